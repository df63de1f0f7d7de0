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
    void* Allocate(std::size_t, std::size_t) override { return nullptr; }
    void Free(void* pointer) override { m_previous->Free(pointer); }

private:
    Yr::RawMemorySource* m_previous;
};

TEST(MemoryManagerTest, FailedAllocationThrowsOrReturnsNullAsAsked) {
    {
        ScopedFailingSource failing;
        EXPECT_THROW((void)MemoryManager::Allocate(64), Yr::OutOfMemoryException);
        EXPECT_THROW((void)MemoryManager::AllocateAligned(64, 4096), Yr::OutOfMemoryException);
        EXPECT_EQ(MemoryManager::Allocate(64, ExceptionBehaviour::ReturnNull), nullptr);
    }
    // A size that would wrap once padded for the alignment fails instead.
    const std::size_t huge = std::numeric_limits<std::size_t>::max() - 10;
    EXPECT_EQ(MemoryManager::AllocateAligned(huge, 4096, ExceptionBehaviour::ReturnNull), nullptr);
}

TEST(MemoryManagerTest, BlocksAreAlignedAndClearedOnRequest) {
    auto* cleared =
        static_cast<unsigned char*>(MemoryManager::Allocate(1000, ExceptionBehaviour::Throw, true));
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(cleared[i], 0) << i;
    MemoryManager::Free(cleared);
    for (const std::size_t alignment : {8u, 64u, 4096u, 65536u}) {
        void* block = MemoryManager::AllocateAligned(5000, alignment);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0u) << alignment;
        std::memset(block, 0x5A, 5000);  // the sanitizer builds check the end
        MemoryManager::Free(block);
    }
}

}  // namespace
