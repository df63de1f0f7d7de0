#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CapturedDebugOutput.h"
#include "tests/support/ExpectYrException.h"

#include "Common/StandardMemoryAllocator.h"
#include "Common/VirtualMemoryAllocator.h"
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

// Registered while it lives; answers with `release`, given the requested size.
class ScriptedHandler final : public Yr::MemoryAllocationFailureHandler {
public:
    explicit ScriptedHandler(std::function<bool(std::size_t)> release)
        : m_release(std::move(release)) {
        Yr::MemoryManager::RegisterFailureHandler(*this);
    }
    ~ScriptedHandler() override { Yr::MemoryManager::UnregisterFailureHandler(*this); }
    bool ReleaseMemory(std::size_t requestedSize) override { return m_release(requestedSize); }

private:
    std::function<bool(std::size_t)> m_release;
};

// A handler that fails the base layer's way is logged and the next one asked;
// the walk stops at the first that released, and the allocation is retried.
TEST(MemoryAllocatorTest, FailedAllocationAsksHandlersInOrderUntilOneReleases) {
    std::string calls;
    ScriptedHandler failing([&calls](std::size_t) -> bool {
        calls += 'a';
        throw Yr::IOException("Cache flush failed.", "Test", 7, Yr::kIOErrorCode);
    });
    // Declines a request of the allocation's size only.
    ScriptedHandler declining([&calls](std::size_t size) { return calls += 'b', size != 100; });
    ScriptedHandler releasing([&calls](std::size_t) { return calls += 'c', true; });
    ScriptedHandler unasked([&calls](std::size_t) { return calls += 'd', true; });
    Morvelan::Testing::CapturedDebugOutput debugOutput;
    FailingMemorySource source(1);
    StandardMemoryAllocator::Free(StandardMemoryAllocator::Allocate(100));
    EXPECT_EQ(calls, "abc");
    EXPECT_NE(debugOutput.GetText().find("IOException: Cache flush failed."), std::string::npos)
        << debugOutput.GetText();
}

// More handlers than the walk keeps on the stack: the last still gets asked.
TEST(MemoryAllocatorTest, HandlersBeyondTheInlineTenAreAskedToo) {
    int asked = 0;
    std::vector<std::unique_ptr<ScriptedHandler>> handlers;
    for (int i = 0; i < 12; ++i)
        handlers.push_back(std::make_unique<ScriptedHandler>(
            [&asked, i](std::size_t) { return ++asked, i == 11; }));
    FailingMemorySource source(1);
    StandardMemoryAllocator::Free(StandardMemoryAllocator::Allocate(64));
    EXPECT_EQ(asked, 12);
}

TEST(MemoryAllocatorTest, NoReleaseMeansOutOfMemory) {
    FailingMemorySource source(1);
    Morvelan::Testing::ExpectYrException<Yr::OutOfMemoryException>(
        [] { StandardMemoryAllocator::Allocate(8, 64); }, "", -108);
    // Sizes no address space can hold fail without help from a test.
    EXPECT_THROW(VirtualMemoryAllocator::Allocate(SIZE_MAX - 100), Yr::OutOfMemoryException);
}

TEST(MemoryAllocatorTest, VirtualBlocksAreWritableAndPageAligned) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{5000}, std::size_t{64} << 20}) {
        SCOPED_TRACE(size);
        auto* block = static_cast<unsigned char*>(VirtualMemoryAllocator::Allocate(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 4096, 0u);
        std::memset(block, 0xA5, size);
        VirtualMemoryAllocator::Free(block);
    }
    VirtualMemoryAllocator::Free(nullptr);
}

}  // namespace
