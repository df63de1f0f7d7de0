// Long seeded runs of block file operations, each checked against a plain
// in-memory model of what the file must hold. The cache is kept small so
// that blocks are replaced, written back and read again all the time.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "Common/Containers/BlockFileBase.h"
#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockFileFormat.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Common::Containers::BlockFileBase;
using Morvelan::Common::Containers::BlockFileException;
using Morvelan::Testing::At;
using Morvelan::Testing::ScopedTempFolder;

// What the file must hold, by the rules of the format: the last freed block
// is handed out first, a new block is zeros, master-list blocks come from the
// same allocator, Compact gives back only the trailing run of free blocks.
class Model {
public:
    explicit Model(unsigned blockSize)
        : m_blockSize(blockSize),
          m_capacity(Morvelan::Common::Containers::BlockFileFormat::MasterListCapacity(blockSize)) {
    }

    unsigned Allocate() {
        const unsigned id = TakeBlock();
        blocks[id] = std::string(m_blockSize, '\0');
        return id;
    }

    // Into the first list block with room; a new list block after the last.
    unsigned AllocateMaster() {
        const unsigned id = Allocate();
        const auto list = std::find_if(m_lists.begin(), m_lists.end(), [&](const auto& entries) {
            return entries.size() < m_capacity;
        });
        if (list != m_lists.end()) {
            list->push_back(id);
        } else {
            TakeBlock();
            m_lists.push_back({id});
        }
        masters.insert(id);
        return id;
    }

    // The last entry of its list block fills the hole.
    void Free(unsigned id) {
        blocks.erase(id);
        freeStack.push_back(id);
        if (masters.erase(id) == 0) return;
        for (std::vector<unsigned>& entries : m_lists) {
            const auto found = std::find(entries.begin(), entries.end(), id);
            if (found == entries.end()) continue;
            *found = entries.back();
            entries.pop_back();
            return;
        }
    }

    // The free list is rebuilt smallest first: the back of the stack is the
    // smallest.
    void Compact() {
        std::sort(freeStack.begin(), freeStack.end());
        while (!freeStack.empty() && freeStack.back() == blockCount - 1) {
            freeStack.pop_back();
            --blockCount;
        }
        std::reverse(freeStack.begin(), freeStack.end());
    }

    std::map<unsigned, std::string> blocks;  // every client block
    std::vector<unsigned> freeStack;         // its back is handed out next
    std::set<unsigned> masters;
    unsigned blockCount = 1;

private:
    unsigned TakeBlock() {
        if (freeStack.empty()) return blockCount++;
        const unsigned id = freeStack.back();
        freeStack.pop_back();
        return id;
    }

    unsigned m_blockSize;
    std::size_t m_capacity;
    std::vector<std::vector<unsigned>> m_lists;  // the entries of each list block
};

struct RunParameters {
    unsigned seed, blockSize, cacheSize, steps;
};

class ModelRun {
public:
    ModelRun(const RunParameters& parameters, const std::string& path)
        : m_parameters(parameters),
          m_path(path),
          m_random(parameters.seed),
          m_model(parameters.blockSize),
          m_file(Open(parameters.cacheSize)) {}

    void Run() {
        try {
            for (m_step = 0; m_step < m_parameters.steps; ++m_step) {
                Step();
                CheckCounts();
                if (m_step % 1000 == 999) CheckContents();
                if (testing::Test::HasFailure()) {
                    ADD_FAILURE() << "seed " << m_parameters.seed << ", step " << m_step;
                    return;
                }
            }
            UnpinAll();
            m_file->Close();
        } catch (const std::exception& e) {
            ADD_FAILURE() << "seed " << m_parameters.seed << ", step " << m_step << ": "
                          << e.what();
        }
    }

private:
    std::unique_ptr<BlockFileBase> Open(unsigned cacheSize) {
        return std::make_unique<BlockFileBase>(At(m_path), m_parameters.blockSize, cacheSize);
    }

    unsigned Below(std::size_t bound) {
        return std::uniform_int_distribution<unsigned>(0, unsigned(bound) - 1)(m_random);
    }

    // A random client block; 0 when there is none.
    unsigned PickBlock() {
        if (m_model.blocks.empty()) return 0;
        return std::next(m_model.blocks.begin(), Below(m_model.blocks.size()))->first;
    }

    std::string Bytes(unsigned id) {
        return std::string(m_file->GetBlock(id, false), m_parameters.blockSize);
    }

    void Step() {
        // The file swings between a few dozen blocks and about 150, far
        // more than the cache holds: long free lists build up while it
        // shrinks, and Compact finds long runs to give back.
        if (m_model.blocks.size() > 150) m_shrinking = true;
        if (m_model.blocks.size() < 30) m_shrinking = false;
        // Each action is given a random client block, if it needs one; the
        // file is empty only at the start, and then it can only grow.
        using Action = void (ModelRun::*)(unsigned);
        static constexpr Action kActions[] = {
            &ModelRun::AllocatePlain, &ModelRun::AllocateMaster, &ModelRun::Free,
            &ModelRun::Write,         &ModelRun::Read,           &ModelRun::Pin,
            &ModelRun::Evict,         &ModelRun::EvictAll,       &ModelRun::Flush,
            &ModelRun::Compact,       &ModelRun::SetCacheSize,   &ModelRun::Reopen,
        };
        const unsigned id = PickBlock();
        if (id == 0) return Allocate(false);
        (this->*kActions[(m_shrinking ? m_shrink : m_grow)(m_random)])(id);
    }

    void AllocatePlain(unsigned) { Allocate(false); }
    void AllocateMaster(unsigned) { Allocate(true); }
    void EvictAll(unsigned) { m_file->EvictAll(); }
    void Flush(unsigned) { m_file->Flush(Below(50) != 0); }  // a sync now and then: it costs

    void Allocate(bool master) {
        const unsigned expected = master ? m_model.AllocateMaster() : m_model.Allocate();
        const unsigned id = master ? m_file->AllocateMasterBlock() : m_file->AllocateBlock();
        ASSERT_EQ(id, expected);
        ASSERT_EQ(Bytes(id), m_model.blocks[id]);
    }

    void Free(unsigned id) {
        if (m_pins.count(id) != 0) return;
        m_model.Free(id);
        m_file->FreeBlock(id);
    }

    // Fills a block with a fresh pattern, by one of the three ways a client
    // marks it modified.
    void Write(unsigned id) {
        const auto pin = m_pins.find(id);
        const unsigned way = Below(3);
        char* bytes = pin != m_pins.end() ? pin->second.buffer : m_file->GetBlock(id, way == 0);
        std::string& expected = m_model.blocks[id];
        const unsigned char first = static_cast<unsigned char>(Below(256));
        const unsigned stride = 1 + Below(7);
        for (unsigned i = 0; i < m_parameters.blockSize; ++i)
            expected[i] = static_cast<char>(first + i * stride);
        std::copy(expected.begin(), expected.end(), bytes);
        if (pin != m_pins.end() || way != 0) m_file->SetDirty(id, true);
    }

    void Read(unsigned id) {
        const char* bytes = m_file->GetBlock(id, false);
        const auto pin = m_pins.find(id);
        if (pin != m_pins.end()) {
            ASSERT_EQ(bytes, pin->second.buffer);
        }
        ASSERT_EQ(Bytes(id), m_model.blocks[id]) << id;
    }

    // Pins a block (at most a few at once, so that the file's own operations
    // keep room in the cache) or takes a pin away.
    void Pin(unsigned id) {
        if (!m_pins.empty() && (m_pins.size() >= 4 || Below(2) == 0)) {
            const auto pin = std::next(m_pins.begin(), Below(m_pins.size()));
            m_file->PinBlock(pin->first, false);
            if (--pin->second.count == 0) m_pins.erase(pin);
            return;
        }
        char* bytes = m_file->GetBlock(id, false);
        m_file->PinBlock(id, true);
        Pinned& pinned = m_pins[id];
        pinned.buffer = bytes;
        ++pinned.count;
    }

    void Evict(unsigned id) {
        if (m_pins.count(id) == 0)
            m_file->Evict(id);
        else
            EXPECT_THROW(m_file->Evict(id), BlockFileException);
    }

    void UnpinAll() {
        for (const auto& [id, pinned] : m_pins)
            for (unsigned i = 0; i < pinned.count; ++i) m_file->PinBlock(id, false);
        m_pins.clear();
    }

    void Compact(unsigned) {
        UnpinAll();
        m_model.Compact();
        m_file->Compact();
    }

    // Pages with pinned blocks stay, so a pinned cache may stay larger.
    void SetCacheSize(unsigned) {
        const unsigned size = 16 + Below(25);
        m_file->SetCacheSize(size);
        const unsigned actual = m_file->GetCacheSize();
        EXPECT_TRUE(m_pins.empty() ? actual == size : actual >= size) << actual << ", " << size;
    }

    void Reopen(unsigned) {
        UnpinAll();
        m_file->Close();
        m_file.reset();
        m_file = Open(16 + Below(25));
        CheckContents();
    }

    // As many masters, none twice (the file's set has no duplicates), each
    // expected.
    void CheckCounts() {
        ASSERT_EQ(m_file->GetBlockCount(), m_model.blockCount);
        ASSERT_EQ(m_file->GetFreeBlockCount(), m_model.freeStack.size());
        Yr::PagedArray<unsigned int, 8> masters;
        ASSERT_EQ(m_file->GetAllocatedMasterBlocks(masters), m_model.masters.size());
        for (unsigned id : masters) ASSERT_EQ(m_model.masters.count(id), 1u) << id;
    }

    void CheckContents() {
        for (const auto& [id, bytes] : m_model.blocks) {
            ASSERT_EQ(Bytes(id), bytes) << "block " << id;
            ASSERT_EQ(m_file->IsMasterBlock(id), m_model.masters.count(id) != 0) << id;
        }
    }

    struct Pinned {
        char* buffer = nullptr;
        unsigned count = 0;
    };

    RunParameters m_parameters;
    std::string m_path;
    std::mt19937 m_random;
    Model m_model;
    std::unique_ptr<BlockFileBase> m_file;
    std::map<unsigned, Pinned> m_pins;
    unsigned m_step = 0;
    // Weights of the actions, in the order of Step's table.
    std::discrete_distribution<int> m_grow{18, 4, 10, 14, 18, 8, 4, 1, 1, 3, 1, 0.25};
    std::discrete_distribution<int> m_shrink{6, 2, 24, 14, 18, 8, 4, 1, 1, 3, 1, 0.25};
    bool m_shrinking = false;
};

TEST(BlockFileModelTest, RandomOperationsMatchTheModel) {
    const RunParameters runs[] = {
        {1, 64, 16, 20000},  {2, 128, 24, 20000}, {3, 512, 40, 20000}, {4, 64, 20, 20000},
        {5, 100, 16, 20000}, {6, 256, 32, 20000}, {7, 36, 16, 20000},  {8, 72, 18, 20000},
    };
    unsigned steps = 0;
    const auto start = std::chrono::steady_clock::now();
    for (const RunParameters& parameters : runs) {
        ScopedTempFolder folder;
        ModelRun(parameters, folder.PathOf("blocks")).Run();
        if (testing::Test::HasFailure()) return;
        steps += parameters.steps;
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%u steps in %.2f s\n", steps, elapsed.count());
    EXPECT_GE(steps, 100000u);
}

}  // namespace
