#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "Common/Containers/BlockCache.h"
#include "Common/Containers/BlockFileException.h"
#include "Yr/ErrorCodes.h"
#include "tests/support/MemoryBlockFileHandler.h"

namespace {

using Morvelan::Common::Containers::BlockCache;
using Morvelan::Common::Containers::BlockFileException;
using Morvelan::Testing::MemoryBlockFileHandler;

constexpr Yr::UInt32 kBlockSize = 64;
constexpr Yr::UInt32 kBlockCount = 64;
constexpr int kWorkers = 4;
constexpr int kStepsPerWorker = 20000;

// Word 0 of every block holds its identifier, word 1 a version that only
// the block's owner (identifier modulo the worker count) raises. Workers
// access the words with relaxed atomics: the cache guards its slots, not the
// bytes a holder of a pin changes.
std::atomic_ref<Yr::UInt32> Word(const BlockCache::BlockReference& block, int index) {
    return std::atomic_ref<Yr::UInt32>(reinterpret_cast<Yr::UInt32*>(block.GetBuffer())[index]);
}

class Worker {
public:
    Worker(BlockCache& cache, int number, std::vector<Yr::UInt32>& versions)
        : m_cache(cache), m_number(number), m_versions(versions), m_random(number) {}

    void operator()() {
        for (int step = 0; step < kStepsPerWorker; ++step) {
            try {
                Step();
            } catch (const BlockFileException& e) {
                // Injected read failures and evictions of blocks that are
                // pinned are expected; anything else is not.
                const std::string message = e.what();
                if (message.find("block is pinned") == std::string::npos &&
                    message.find("Failed read block") == std::string::npos &&
                    message.find("failed to load block") == std::string::npos)
                    throw;
            }
            if (m_pinnedByIdentifier != 0) {
                m_cache.Pin(m_pinnedByIdentifier, false);
                m_pinnedByIdentifier = 0;
            }
        }
    }

    int mismatches = 0;

private:
    Yr::UInt32 RandomBlock() {
        return std::uniform_int_distribution<Yr::UInt32>(1, kBlockCount - 1)(m_random);
    }

    void Step() {
        const Yr::UInt32 id = RandomBlock();
        const bool owned = int(id % kWorkers) == m_number;
        switch (m_random() % 5) {
            case 0:
            case 1: {
                auto block = m_cache.GetBlock(id, false);
                auto other = m_cache.GetBlock(RandomBlock(), false);  // two pins at once
                Check(block, id);
                Check(other, other.GetIdentifier());
                break;
            }
            case 2:
                if (owned) {
                    auto block = m_cache.GetBlock(id, false);
                    Check(block, id);
                    Word(block, 1).store(++m_versions[id], std::memory_order_relaxed);
                    m_cache.SetDirty(id, true);
                }
                break;
            case 3:
                if (owned) {
                    // A pin taken by identifier outlives the reference.
                    auto block = m_cache.GetBlock(id, true);
                    m_cache.Pin(id, true);
                    m_pinnedByIdentifier = id;
                    block.Release();
                    m_cache.Evict(id);  // refused: still pinned
                }
                break;
            default:
                m_cache.Evict(id);
                break;
        }
    }

    void Check(const BlockCache::BlockReference& block, Yr::UInt32 id) {
        if (Word(block, 0).load(std::memory_order_relaxed) != id) ++mismatches;
    }

    BlockCache& m_cache;
    const int m_number;
    std::vector<Yr::UInt32>& m_versions;
    std::mt19937 m_random;
    Yr::UInt32 m_pinnedByIdentifier = 0;
};

TEST(BlockCacheConcurrencyTest, WorkersAndAFlusherKeepEveryBlockWhole) {
    MemoryBlockFileHandler handler(kBlockCount * kBlockSize);
    for (Yr::UInt32 id = 0; id < kBlockCount; ++id) handler.SetWordAt(id * kBlockSize, id);
    handler.SetSize(kBlockCount * kBlockSize);
    std::atomic<int> readNumber{0};
    handler.beforeRead = [&](Yr::UInt64) {
        if (++readNumber % 97 == 0)
            throw BlockFileException("Failed read block from block file. I/O error.", "test",
                                     __LINE__, Yr::kIOErrorCode);
    };
    BlockCache cache(&handler, kBlockSize, 16, 16 * kBlockSize);

    // Each owner's versions are touched by its own thread only.
    std::vector<std::vector<Yr::UInt32>> versions(kWorkers, std::vector<Yr::UInt32>(kBlockCount));
    std::vector<Worker> workers;
    for (int i = 0; i < kWorkers; ++i) workers.emplace_back(cache, i, versions[i]);
    std::atomic<bool> done{false};
    std::thread flusher([&] {
        for (int round = 0; !done; ++round) {
            try {
                if (round % 3 == 0) cache.EvictAll();
                cache.Flush(round % 2 == 0);
                if (round % 50 == 0) cache.SetCacheSize(round % 100 == 0 ? 32 : 16);
            } catch (const BlockFileException&) {
                ADD_FAILURE() << "the flusher never pins, so nothing may fail it";
            }
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> threads;
    for (auto& worker : workers) threads.emplace_back(std::ref(worker));
    for (auto& thread : threads) thread.join();
    done = true;
    flusher.join();

    handler.beforeRead = nullptr;
    cache.Flush(false);
    cache.EvictAll();
    for (int i = 0; i < kWorkers; ++i) EXPECT_EQ(workers[i].mismatches, 0) << "worker " << i;
    for (Yr::UInt32 id = 1; id < kBlockCount; ++id) {
        EXPECT_EQ(handler.WordAt(id * kBlockSize), id);
        EXPECT_EQ(handler.WordAt(id * kBlockSize + 4), versions[id % kWorkers][id])
            << "block " << id << " lost a change";
    }
    std::vector<BlockCache::BlockReference> all;  // no pin was leaked
    for (Yr::UInt32 id = 1; id <= cache.GetCacheSize(); ++id) all.push_back(cache.GetBlock(id, false));
}

}  // namespace
