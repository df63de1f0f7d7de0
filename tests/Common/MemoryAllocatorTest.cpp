#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Common/StandardMemoryAllocator.h"
#include "Common/VirtualMemoryAllocator.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Debug.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryManager.h"

namespace {

using Morvelan::Common::StandardMemoryAllocator;
using Morvelan::Common::VirtualMemoryAllocator;

// The heap, except that the first `failures` allocations come back null.
class FailingMemorySource final : public Yr::RawMemorySource {
public:
    explicit FailingMemorySource(int failures)
        : m_failures(failures), m_heap(Yr::MemoryManager::SetRawMemorySource(this)) {}
    ~FailingMemorySource() override { Yr::MemoryManager::SetRawMemorySource(m_heap); }
    void* Allocate(std::size_t size, std::size_t alignment) override {
        return m_failures-- > 0 ? nullptr : m_heap->Allocate(size, alignment);
    }
    void Free(void* pointer) override { m_heap->Free(pointer); }

private:
    int m_failures;
    Yr::RawMemorySource* m_heap;
};

class CapturedDebugOutput final : public Yr::DebugSink {
public:
    CapturedDebugOutput() : m_previous(Yr::SetDebugSink(this)) {}
    ~CapturedDebugOutput() override { Yr::SetDebugSink(m_previous); }
    void Write(std::string_view text) override { m_text.append(text); }

    std::string m_text;

private:
    Yr::DebugSink* m_previous;
};

// Registered while it lives; records the sizes it is asked for.
class ScriptedHandler final : public Yr::MemoryAllocationFailureHandler {
public:
    explicit ScriptedHandler(std::function<bool()> release) : m_release(std::move(release)) {
        Yr::MemoryManager::RegisterFailureHandler(*this);
    }
    ~ScriptedHandler() override { Yr::MemoryManager::UnregisterFailureHandler(*this); }
    bool ReleaseMemory(std::size_t requestedSize) override {
        m_requests.push_back(requestedSize);
        return m_release();
    }

    std::vector<std::size_t> m_requests;

private:
    std::function<bool()> m_release;
};

// Refuses the first `failures` mappings; records what is mapped and unmapped.
class RecordingMapper final : public ::IO::FileSystemWrapper {
public:
    explicit RecordingMapper(int failures)
        : FileSystemWrapper(::IO::FileSystem::Get()), m_failures(failures), m_scope(*this) {}
    void* MapMemory(std::size_t size) override {
        if (m_failures-- > 0) return nullptr;
        m_regions.emplace_back(FileSystemWrapper::MapMemory(size), size);
        return m_regions.back().first;
    }
    void UnmapMemory(void* address, std::size_t size) override {
        m_regions.emplace_back(address, size);
        FileSystemWrapper::UnmapMemory(address, size);
    }

    std::vector<std::pair<void*, std::size_t>> m_regions;  // mapped and unmapped, in call order

private:
    int m_failures;
    ::IO::ScopedFileSystem m_scope;
};

TEST(MemoryAllocatorTest, RetriesWhileAHandlerReleasesMemory) {
    const struct {
        int failures;
        int releases;  // calls the handler answers true
        int expectedCalls;
    } kCases[] = {{0, 0, 0}, {1, 1, 1}, {3, 3, 3}, {1, 0, 1}, {3, 2, 3}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.failures << " failures, " << c.releases);
        int releases = c.releases;
        ScriptedHandler handler([&releases] { return releases-- > 0; });
        FailingMemorySource source(c.failures);
        if (c.failures <= c.releases) {
            StandardMemoryAllocator::Free(StandardMemoryAllocator::Allocate(100));
        } else {
            try {
                StandardMemoryAllocator::Allocate(100);
                ADD_FAILURE() << "allocation succeeded";
            } catch (const Yr::OutOfMemoryException& exception) {
                EXPECT_TRUE(exception.GetMessage().IsEmpty());
                EXPECT_EQ(exception.GetErrorCode(), -108);
                EXPECT_STREQ(exception.GetFileName(), "Common/MemoryAllocator");
            }
        }
        EXPECT_EQ(handler.m_requests, std::vector<std::size_t>(c.expectedCalls, 100));
    }
}

TEST(MemoryAllocatorTest, HandlersAreAskedInOrderUntilOneReleases) {
    std::string calls;
    ScriptedHandler first([&calls] { return calls += 'a', false; });
    ScriptedHandler second([&calls] { return calls += 'b', true; });
    ScriptedHandler third([&calls] { return calls += 'c', true; });
    FailingMemorySource source(1);
    StandardMemoryAllocator::Free(StandardMemoryAllocator::Allocate(8, 64));
    EXPECT_EQ(calls, "ab");
}

TEST(MemoryAllocatorTest, HandlerFailingWithBaseExceptionIsLoggedAndSkipped) {
    CapturedDebugOutput debugOutput;
    ScriptedHandler failing([]() -> bool {
        throw Yr::IOException("Cache flush failed.", "Test", 7, Yr::kIOErrorCode);
    });
    ScriptedHandler releasing([] { return true; });
    FailingMemorySource source(1);
    StandardMemoryAllocator::Free(StandardMemoryAllocator::Allocate(8));
    EXPECT_EQ(releasing.m_requests.size(), 1u);
    EXPECT_NE(debugOutput.m_text.find("IOException: Cache flush failed."), std::string::npos)
        << debugOutput.m_text;
}

TEST(MemoryAllocatorTest, HandlerFailingWithOtherExceptionEndsTheAllocation) {
    ScriptedHandler failing([]() -> bool { throw std::runtime_error("foreign"); });
    ScriptedHandler releasing([] { return true; });
    FailingMemorySource source(1);
    EXPECT_THROW(StandardMemoryAllocator::Allocate(8), std::runtime_error);
    EXPECT_TRUE(releasing.m_requests.empty());
}

TEST(MemoryAllocatorTest, VirtualBlocksAreWritablePageAlignedAndReleasedWhole) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{5000}, std::size_t{64} << 20}) {
        SCOPED_TRACE(size);
        RecordingMapper mapper(0);
        auto* block = static_cast<unsigned char*>(VirtualMemoryAllocator::Allocate(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 4096, 0u);
        std::memset(block, 0xA5, size);
        VirtualMemoryAllocator::Free(block);
        VirtualMemoryAllocator::Free(nullptr);
        ASSERT_EQ(mapper.m_regions.size(), 2u);
        EXPECT_GE(mapper.m_regions[0].second, size);
        EXPECT_EQ(mapper.m_regions[1], mapper.m_regions[0]);
    }
}

TEST(MemoryAllocatorTest, RefusedMappingReachesTheHandlers) {
    {
        RecordingMapper mapper(1);
        ScriptedHandler releasing([] { return true; });
        VirtualMemoryAllocator::Free(VirtualMemoryAllocator::Allocate(10000));
        EXPECT_EQ(releasing.m_requests, std::vector<std::size_t>{10000});
    }
    RecordingMapper mapper(1);
    EXPECT_THROW(VirtualMemoryAllocator::Allocate(10000), Yr::OutOfMemoryException);
    // Sizes no address space can hold fail without help from a test.
    EXPECT_THROW(VirtualMemoryAllocator::Allocate(SIZE_MAX - 100), Yr::OutOfMemoryException);
    EXPECT_THROW(VirtualMemoryAllocator::Allocate(std::size_t{1} << 60), Yr::OutOfMemoryException);
}

}  // namespace
