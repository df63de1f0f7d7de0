#include "Yr/MemoryManager.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "Yr/Exceptions.h"

namespace {

using Yr::ExceptionBehaviour;
using Yr::MemoryManager;

// Fails every allocation while installed; frees go on to the source it replaced.
class ScopedFailingSource final : public Yr::RawMemorySource {
public:
    ScopedFailingSource() : m_previous(MemoryManager::SetRawMemorySource(this)) {}
    ~ScopedFailingSource() override { MemoryManager::SetRawMemorySource(m_previous); }
    void* Allocate(std::size_t, std::size_t) override {
        ++m_attempts;
        return nullptr;
    }
    void Free(void* pointer) override { m_previous->Free(pointer); }
    int m_attempts = 0;

private:
    Yr::RawMemorySource* m_previous;
};

class NamedHandler final : public Yr::MemoryAllocationFailureHandler {
public:
    bool ReleaseMemory(std::size_t) override { return false; }
};

TEST(MemoryManagerTest, FailedAllocationThrowsOrReturnsNullAsAsked) {
    ScopedFailingSource failing;
    try {
        (void)MemoryManager::Allocate(64);
        FAIL() << "no exception";
    } catch (const Yr::OutOfMemoryException& e) {
        EXPECT_EQ(e.GetErrorCode(), -108);
        EXPECT_TRUE(e.GetMessage().IsEmpty());
    }
    EXPECT_THROW((void)MemoryManager::AllocateAligned(64, 4096), Yr::OutOfMemoryException);
    EXPECT_EQ(MemoryManager::Allocate(64, ExceptionBehaviour::ReturnNull), nullptr);
    EXPECT_EQ(MemoryManager::AllocateAligned(64, 4096, ExceptionBehaviour::ReturnNull), nullptr);
    EXPECT_EQ(failing.m_attempts, 4);
}

TEST(MemoryManagerTest, HeapBlocksAreUsableAndClearedOnRequest) {
    void* empty = MemoryManager::Allocate(0);
    EXPECT_NE(empty, nullptr);
    MemoryManager::Free(empty);
    MemoryManager::Free(nullptr);

    auto* cleared =
        static_cast<unsigned char*>(MemoryManager::Allocate(1000, ExceptionBehaviour::Throw, true));
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(cleared[i], 0) << i;
    MemoryManager::Free(cleared);
}

TEST(MemoryManagerTest, AlignedBlocksHonourTheAlignment) {
    for (const std::size_t alignment : {8u, 16u, 64u, 4096u, 65536u}) {
        for (const std::size_t size : {1u, 100u, 4096u, 5000u}) {
            SCOPED_TRACE(testing::Message() << alignment << " / " << size);
            void* block = MemoryManager::AllocateAligned(size, alignment);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0u);
            // Every byte asked for is ours; the sanitizer builds check the end.
            std::memset(block, 0x5A, size);
            MemoryManager::Free(block);
        }
    }
}

TEST(MemoryManagerTest, AlignedSizeNearTheLimitFailsInsteadOfWrapping) {
    const std::size_t huge = std::numeric_limits<std::size_t>::max() - 10;
    EXPECT_EQ(MemoryManager::AllocateAligned(huge, 4096, ExceptionBehaviour::ReturnNull), nullptr);
    EXPECT_THROW((void)MemoryManager::AllocateAligned(huge, 4096), Yr::OutOfMemoryException);
}

TEST(MemoryManagerTest, HandlerListIsACopyInRegistrationOrder) {
    NamedHandler first;
    NamedHandler second;
    const auto before = MemoryManager::GetFailureHandlers();
    MemoryManager::RegisterFailureHandler(first);
    MemoryManager::RegisterFailureHandler(second);
    const auto both = MemoryManager::GetFailureHandlers();
    ASSERT_EQ(both.size(), before.size() + 2);
    EXPECT_EQ(both[both.size() - 2], &first);
    EXPECT_EQ(both.back(), &second);

    // A handler may leave while a copy is being walked; the copy is unchanged.
    MemoryManager::UnregisterFailureHandler(first);
    EXPECT_EQ(both.size(), before.size() + 2);
    const auto afterFirst = MemoryManager::GetFailureHandlers();
    ASSERT_EQ(afterFirst.size(), before.size() + 1);
    EXPECT_EQ(afterFirst.back(), &second);

    MemoryManager::UnregisterFailureHandler(second);
    EXPECT_EQ(MemoryManager::GetFailureHandlers(), before);
}

}  // namespace
