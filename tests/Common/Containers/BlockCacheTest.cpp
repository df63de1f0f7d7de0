#include "Common/Containers/BlockCache.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <future>
#include <mutex>
#include <thread>

#include "Common/Containers/BlockFileException.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/MemoryBlockFileHandler.h"

namespace {

using Morvelan::Common::Containers::BlockCache;
using Morvelan::Common::Containers::BlockFileException;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::MemoryBlockFileHandler;

constexpr Yr::UInt32 kBlockSize = 64;
constexpr Yr::UInt32 kPageSize = 16 * kBlockSize;

class BlockCacheTest : public ::testing::Test {
protected:
    // A file of `blocks` blocks, each starting with its own identifier.
    void FillFile(Yr::UInt32 blocks) {
        for (Yr::UInt32 id = 0; id < blocks; ++id) handler.SetWordAt(id * kBlockSize, id);
        handler.SetSize(Yr::UInt64{blocks} * kBlockSize);
    }

    static Yr::UInt32 FirstWord(const BlockCache::BlockReference& block) {
        Yr::UInt32 word;
        std::memcpy(&word, block.GetBuffer(), 4);
        return word;
    }

    static void SetFirstWord(const BlockCache::BlockReference& block, Yr::UInt32 word) {
        std::memcpy(block.GetBuffer(), &word, 4);
    }

    MemoryBlockFileHandler handler{1 << 20};
    BlockCache cache{&handler, kBlockSize, 16, kPageSize};
};

TEST_F(BlockCacheTest, RefusesBadParametersInOrder) {
    struct Case {
        bool nullHandler;
        Yr::UInt32 blockSize, cacheSize, pageSize;
        const char* message;
    };
    const Case cases[] = {
        {true, 0, 0, 0, "Invalid block file handler: handler is null."},
        {false, 0, 15, 0, "Invalid block size: block size is 0."},
        {false, 64, 15, 0, "Invalid cache size: case size is less than 16."},
        {false, 64, 16, 16 * 64 - 1,
         "Invalid cache page size: cache page size is less than 16 * block size."},
        {false, 0x80000000u, 16, 0xFFFFFFFFu,
         "Invalid cache page size: cache page size is less than 16 * block size."},
    };
    for (const Case& c : cases) {
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] {
                BlockCache(c.nullHandler ? nullptr : &handler, c.blockSize, c.cacheSize,
                           c.pageSize);
            },
            c.message, Yr::kIllegalArgumentErrorCode);
    }
}

TEST_F(BlockCacheTest, ReadsBlocksOnceAndZerosPastTheEnd) {
    FillFile(4);
    EXPECT_EQ(FirstWord(cache.GetBlock(3, false)), 3u);
    EXPECT_EQ(FirstWord(cache.GetBlock(3, false)), 3u);
    EXPECT_EQ(handler.reads, 1);

    handler.SetWordAt(4 * kBlockSize, 99);  // beyond the file's size: never read
    const auto beyond = cache.GetBlock(4, false);
    EXPECT_EQ(handler.reads, 1);
    for (Yr::UInt32 i = 0; i < kBlockSize; ++i) EXPECT_EQ(beyond.GetBuffer()[i], 0);
}

TEST_F(BlockCacheTest, ReplacesTheLeastRecentlyUsedAndWritesDirtyOnce) {
    FillFile(40);
    for (Yr::UInt32 id = 1; id <= 16; ++id) cache.GetBlock(id, id == 2);
    cache.GetBlock(1, false);  // now block 2 is the oldest
    cache.GetBlock(17, false);
    EXPECT_EQ(handler.writes, 1);
    const int reads = handler.reads;
    cache.GetBlock(1, false);
    EXPECT_EQ(handler.reads, reads) << "block 1 was used lately and must still be cached";

    cache.GetBlock(2, false);  // read back, clean now
    for (Yr::UInt32 id = 20; id < 40; ++id) cache.GetBlock(id, false);
    EXPECT_EQ(handler.writes, 1);
}

TEST_F(BlockCacheTest, AllPinnedLeavesNoRoom) {
    FillFile(20);
    std::vector<BlockCache::BlockReference> pinned;
    for (Yr::UInt32 id = 1; id <= 16; ++id) pinned.push_back(cache.GetBlock(id, false));
    ExpectYrException<BlockFileException>(
        [&] { cache.GetBlock(17, false); },
        "Failed to get block: there is no more free cache blocks.", Yr::kIOErrorCode);
    pinned.pop_back();
    EXPECT_EQ(FirstWord(cache.GetBlock(17, false)), 17u);
}

TEST_F(BlockCacheTest, PinDirtyAndEvictByIdentifier) {
    FillFile(8);
    for (auto action : {+[](BlockCache& c) { c.Pin(5, true); },
                        +[](BlockCache& c) { c.SetDirty(5, true); }}) {
        ExpectYrException<BlockFileException>([&] { action(cache); },
                                              "Failed to set block dirty: block not found.",
                                              Yr::kIOErrorCode);
    }
    cache.Evict(5);  // not cached: nothing

    SetFirstWord(cache.GetBlock(5, false), 555);
    cache.Pin(5, true);
    cache.SetDirty(5, true);
    ExpectYrException<BlockFileException>([&] { cache.Evict(5); },
                                          "Failed to evict block: 5: block is pinned.",
                                          Yr::kIOErrorCode);
    cache.EvictAll();  // leaves the pinned block
    EXPECT_EQ(handler.writes, 0);
    cache.Pin(5, false);
    cache.Evict(5);
    EXPECT_EQ(handler.WordAt(5 * kBlockSize), 555u);
    EXPECT_EQ(handler.writes, 1);
    EXPECT_THROW(cache.Pin(5, false), BlockFileException);
}

TEST_F(BlockCacheTest, FlushSyncsOnlyWhenAskedAndSomethingWasWritten) {
    FillFile(8);
    cache.Flush(false);
    EXPECT_EQ(handler.flushes, 0);
    SetFirstWord(cache.GetBlock(1, true), 11);
    cache.Flush(true);
    EXPECT_EQ(handler.writes, 1);
    EXPECT_EQ(handler.flushes, 0);
    EXPECT_EQ(handler.WordAt(kBlockSize), 11u);
    cache.Flush(false);
    EXPECT_EQ(handler.flushes, 0) << "nothing dirty is left";
    cache.SetDirty(1, true);
    cache.Flush(false);
    EXPECT_EQ(handler.writes, 2);
    EXPECT_EQ(handler.flushes, 1);
}

TEST_F(BlockCacheTest, DropBeyondEndKeepsTheBlockAtTheNewEnd) {
    FillFile(8);
    for (Yr::UInt32 id = 3; id <= 5; ++id) SetFirstWord(cache.GetBlock(id, true), 100 + id);
    handler.SetSize(4 * kBlockSize);
    cache.DropBeyondEnd();
    const int reads = handler.reads;
    EXPECT_EQ(FirstWord(cache.GetBlock(4, false)), 104u);  // kept, still dirty
    EXPECT_EQ(FirstWord(cache.GetBlock(5, false)), 0u);    // dropped: past the end, zeros
    EXPECT_EQ(handler.reads, reads);
    cache.Flush(true);
    EXPECT_EQ(handler.writes, 2) << "blocks 3 and 4 only; dropped 5 is never written";
}

TEST_F(BlockCacheTest, ResizesByPagesAndKeepsPagesInUse) {
    FillFile(64);
    cache.SetCacheSize(40);  // pages of 16, 16 and 8 slots
    EXPECT_EQ(cache.GetCacheSize(), 40u);
    // Added pages' free slots are taken first: 1-8 land in the 8-slot page,
    // 9-24 in the second page, 25-40 in the first.
    for (Yr::UInt32 id = 1; id <= 40; ++id) SetFirstWord(cache.GetBlock(id, true), 1000 + id);
    {
        const auto pin1 = cache.GetBlock(1, false);
        const auto pin9 = cache.GetBlock(9, false);
        const auto pin25 = cache.GetBlock(25, false);
        cache.SetCacheSize(16);
        EXPECT_EQ(cache.GetCacheSize(), 40u) << "no page can go while it has a pinned block";
        EXPECT_EQ(handler.writes, 0);
    }
    cache.SetCacheSize(16);  // the partial page first, then from the last page
    EXPECT_EQ(cache.GetCacheSize(), 16u);
    EXPECT_EQ(handler.writes, 24) << "dirty blocks of released pages are written";
    cache.Flush(true);
    for (Yr::UInt32 id = 1; id <= 40; ++id)
        EXPECT_EQ(FirstWord(cache.GetBlock(id, false)), 1000 + id);
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { cache.SetCacheSize(15); }, "Invalid cache size: case size is less than 16.",
        Yr::kIllegalArgumentErrorCode);
}

TEST_F(BlockCacheTest, FailedReadFreesTheSlotAndWakesWaiters) {
    FillFile(8);
    std::promise<void> readStarted;
    std::promise<void> failRead;
    auto failNow = failRead.get_future().share();
    handler.beforeRead = [&](Yr::UInt64 offset) {
        if (offset != 6 * kBlockSize) return;
        readStarted.set_value();
        failNow.wait();
        throw BlockFileException("Failed read block from block file. I/O error.", "test",
                                 __LINE__, Yr::kIOErrorCode);
    };
    auto loader = std::async(std::launch::async, [&] { cache.GetBlock(6, false); });
    readStarted.get_future().wait();
    auto waiter = std::async(std::launch::async, [&] { cache.GetBlock(6, false); });
    // The waiter cannot be observed from outside; give it time to queue.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    failRead.set_value();
    ExpectYrException<BlockFileException>([&] { loader.get(); },
                                          "Failed read block from block file. I/O error.",
                                          Yr::kIOErrorCode);
    ExpectYrException<BlockFileException>([&] { waiter.get(); },
                                          "Failed to get block: failed to load block.",
                                          Yr::kIOErrorCode);

    handler.beforeRead = nullptr;
    EXPECT_EQ(FirstWord(cache.GetBlock(6, false)), 6u);
    std::vector<BlockCache::BlockReference> pinned;  // every slot is usable again
    for (Yr::UInt32 id = 10; id < 26; ++id) pinned.push_back(cache.GetBlock(id, false));
}

TEST_F(BlockCacheTest, FailedWriteBackKeepsTheDirtyBlock) {
    FillFile(40);
    SetFirstWord(cache.GetBlock(1, true), 1001);
    for (Yr::UInt32 id = 2; id <= 16; ++id) cache.GetBlock(id, false);
    handler.failWrites = true;
    EXPECT_THROW(cache.GetBlock(17, false), BlockFileException);
    EXPECT_THROW(cache.Evict(1), BlockFileException);
    handler.failWrites = false;
    EXPECT_EQ(FirstWord(cache.GetBlock(1, false)), 1001u);
    cache.Flush(true);
    EXPECT_EQ(handler.WordAt(kBlockSize), 1001u);
}

TEST_F(BlockCacheTest, BlockOffsetsWrapAtFourGibibytes) {
    FillFile(4);
    // (2^26 + 1) × 64 wraps to 64 in 32 bits: the format's own limit.
    EXPECT_EQ(FirstWord(cache.GetBlock((1u << 26) + 1, false)), 1u);
}

}  // namespace
