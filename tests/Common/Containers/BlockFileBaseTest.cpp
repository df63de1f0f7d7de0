#include "Common/Containers/BlockFileBase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockFileFormat.h"
#include "Common/Containers/BlockNotFoundException.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Common::Containers::BlockFileBase;
using Morvelan::Common::Containers::BlockFileException;
using Morvelan::Common::Containers::BlockNotFoundException;
using Morvelan::Testing::At;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::WriteFile;

constexpr unsigned kCacheSize = 16;

class FailingWrites final : public ::IO::FileSystemWrapper {
public:
    using FileSystemWrapper::FileSystemWrapper;
    ::IO::Status WriteAt(int descriptor, Yr::UInt64 offset, const void* buffer,
                         std::size_t size) override {
        if (failWrites) return ::IO::kDiskFull;
        return FileSystemWrapper::WriteAt(descriptor, offset, buffer, size);
    }
    bool failWrites = false;
};

class BlockFileBaseTest : public testing::Test {
protected:
    std::unique_ptr<BlockFileBase> Open(unsigned blockSize = 64, unsigned cacheSize = kCacheSize) {
        return std::make_unique<BlockFileBase>(At(m_path), blockSize, cacheSize);
    }

    // A closed file of `blocks` blocks (header included), block n filled with
    // the byte n.
    void MakeFile(unsigned blockSize, unsigned blocks) {
        std::remove(m_path.c_str());
        const auto file = Open(blockSize);
        for (unsigned i = 1; i < blocks; ++i) {
            const unsigned id = file->AllocateBlock();
            std::fill_n(file->GetBlock(id, true), blockSize, static_cast<char>(id));
        }
        file->Close();
    }

    Yr::UInt32 Field(Yr::UInt32 offset) const {
        return Format::ReadField(ReadFile(m_path).data(), offset);
    }

    void Patch(Yr::UInt32 offset, Yr::UInt32 value) {
        std::string bytes = ReadFile(m_path);
        Format::WriteField(bytes.data(), offset, value);
        WriteFile(m_path, bytes);
    }

    void ExpectOpenRefused(unsigned blockSize, const char* message) {
        ExpectYrException<BlockFileException>([&] { Open(blockSize); }, message, Yr::kIOErrorCode);
    }

    // Holds `count` distinct blocks pinned at once: fails if an operation
    // left the header pinned and `count` is the whole cache.
    static void PinAndUnpin(BlockFileBase& file, unsigned count) {
        for (unsigned id = 1; id <= count; ++id) {
            file.GetBlock(id, false);
            file.PinBlock(id, true);
        }
        for (unsigned id = 1; id <= count; ++id) file.PinBlock(id, false);
    }

    ScopedTempFolder m_folder;
    std::string m_path = m_folder.PathOf("blocks");
};

TEST_F(BlockFileBaseTest, FreedBlocksComeBackLastFreedFirstAndZeroed) {
    const auto file = Open();
    EXPECT_EQ(file->GetBlockCount(), 1u);
    EXPECT_EQ(file->GetFreeBlockCount(), 0u);
    ASSERT_EQ(file->AllocateBlock(), 1u);
    ASSERT_EQ(file->AllocateBlock(), 2u);
    std::fill_n(file->GetBlock(1, true), 64, 'x');
    std::fill_n(file->GetBlock(2, true), 64, 'y');
    file->FreeBlock(2);
    file->FreeBlock(1);
    EXPECT_EQ(file->GetFreeBlockCount(), 2u);
    file->EvictAll();
    EXPECT_EQ(file->AllocateBlock(), 1u);
    EXPECT_EQ(std::string(file->GetBlock(1, false), 64), std::string(64, '\0'));
    EXPECT_EQ(file->AllocateBlock(), 2u);
    EXPECT_EQ(std::string(file->GetBlock(2, false), 64), std::string(64, '\0'));
    EXPECT_EQ(file->GetFreeBlockCount(), 0u);
    EXPECT_EQ(file->GetBlockCount(), 3u);
    EXPECT_EQ(file->GetSize(), 3u * 64);
}

TEST_F(BlockFileBaseTest, CompactDropsOnlyTheTrailingRunOfFreeBlocks) {
    const struct {
        std::vector<unsigned> freed;
        unsigned blockCount;
        std::vector<unsigned> freeAfter;  // in the order allocation hands them out
    } cases[] = {
        {{3, 4, 5}, 3, {}},     {{5, 3, 4}, 3, {}}, {{2, 4}, 6, {2, 4}},
        {{5, 2, 1}, 5, {1, 2}}, {{4}, 6, {4}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.blockCount);
        MakeFile(64, 6);
        auto file = Open();
        for (unsigned id : test.freed) file->FreeBlock(id);
        file->Compact();
        EXPECT_EQ(file->GetBlockCount(), test.blockCount);
        EXPECT_EQ(file->GetFreeBlockCount(), test.freeAfter.size());
        file->Close();
        EXPECT_EQ(ReadFile(m_path).size(), test.blockCount * 64u);
        file = Open();
        for (unsigned id : test.freeAfter) EXPECT_EQ(file->AllocateBlock(), id);
        EXPECT_EQ(file->AllocateBlock(), test.blockCount);
        EXPECT_EQ(std::string(file->GetBlock(test.blockCount, false), 64), std::string(64, '\0'));
        file->Close();
    }
}

TEST_F(BlockFileBaseTest, ABlockCompactGaveBackComesBackZeroed) {
    const auto file = Open();
    for (int i = 0; i < 3; ++i) file->AllocateBlock();
    std::fill_n(file->GetBlock(3, true), 64, 'x');
    file->FreeBlock(3);
    file->Compact();
    EXPECT_EQ(file->GetBlockCount(), 3u);
    EXPECT_EQ(file->AllocateBlock(), 3u);
    EXPECT_EQ(std::string(file->GetBlock(3, false), 64), std::string(64, '\0'));
    file->Close();
}

TEST_F(BlockFileBaseTest, OpeningChecksTheHeaderInOrder) {
    const struct {
        std::function<void()> damage;
        unsigned blockSize;
        const char* message;
    } cases[] = {
        {[this] { Patch(0, 0x46427258); }, 4096,
         "Failed to read block file header: invalid block file magic."},
        {[this] {
             Patch(0, 0);
             Patch(4, 2);
         },
         512, "Failed to read block file header: invalid block file magic."},
        {[this] { Patch(4, 2); }, 4096,
         "Failed to read block file header: unsupported block file version."},
        {[this] {
             Patch(8, 1);
             Patch(16, 11);
         },
         4096, "Failed to read block file header: unsupported block file version."},
        {[this] { WriteFile(m_path, ReadFile(m_path).substr(0, 36864)); }, 4096,
         "Failed to read block file header: invalid block count."},
        // Wraps to 4096 in 32 bits.
        {[this] { Patch(16, 0x100001); }, 4096,
         "Failed to read block file header: invalid block count."},
        {[] {}, 512, "Failed to read block file header: invalid block size."},
        {[this] { Patch(32, 10); }, 4096,
         "Failed to read block file header: invalid free block count."},
        {[this] { Patch(16, 0); }, 4096,
         "Failed to read block file header: invalid free block count."},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.message);
        MakeFile(4096, 10);
        ASSERT_EQ(ReadFile(m_path).size(), 40960u);
        test.damage();
        ExpectOpenRefused(test.blockSize, test.message);
    }
    // Nothing held the file: it opens once the damage is gone.
    MakeFile(4096, 10);
    Open(4096)->Close();
}

TEST_F(BlockFileBaseTest, DamagedMasterListsAreRefusedOnOpen) {
    // Block size 64: 14 entries per list block. Masters 1, 3..15 sit in list
    // block 2.
    const struct {
        const char* name;
        std::vector<std::pair<Yr::UInt32, Yr::UInt32>> patches;
    } cases[] = {
        {"list loops on itself", {{2 * 64 + 0, 2}}},
        {"empty list block loops on itself", {{2 * 64 + 0, 2}, {2 * 64 + 4, 0}}},
        {"head past the file", {{24, 99}}},
        {"next past the file", {{2 * 64 + 0, 16}}},
        {"entry count above capacity", {{2 * 64 + 4, 15}}},
        {"entry past the file", {{2 * 64 + 8, 16}}},
        {"entry listed twice", {{2 * 64 + 12, 1}}},
        {"list block listed as master", {{2 * 64 + 8, 2}}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        std::remove(m_path.c_str());
        {
            const auto file = Open();
            for (int i = 0; i < 14; ++i) file->AllocateMasterBlock();
            file->Close();
        }
        ASSERT_EQ(Field(16), 16u);
        for (const auto& [offset, value] : test.patches) Patch(offset, value);
        ExpectOpenRefused(64, "Failed to read block file header: invalid master block list.");
    }
}

TEST_F(BlockFileBaseTest, MasterListsDamagedWhileOpenAreRefused) {
    // List block 2 is full (14 entries) after these, and a client may write
    // any block.
    const struct {
        const char* name;
        Yr::UInt32 offset;
        Yr::UInt32 value;
        std::function<void(BlockFileBase&)> operation;
        const char* message;
    } cases[] = {
        {"loop", 0, 2, [](BlockFileBase& f) { f.AllocateMasterBlock(); },
         "Failed to allocate master block: invalid master block list."},
        {"next past the file", 0, 99, [](BlockFileBase& f) { f.AllocateMasterBlock(); },
         "Failed to allocate master block: invalid master block list."},
        {"entry count above capacity", 4, 99, [](BlockFileBase& f) { f.FreeBlock(1); },
         "Failed to free block: invalid master block list."},
        {"master missing from its list", 4, 0, [](BlockFileBase& f) { f.FreeBlock(1); },
         "Failed to free block: invalid master block list."},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        std::remove(m_path.c_str());
        const auto file = Open();
        for (int i = 0; i < 14; ++i) file->AllocateMasterBlock();
        file->AllocateBlock();
        Format::WriteField(file->GetBlock(2, true), test.offset, test.value);
        ExpectYrException<BlockFileException>([&] { test.operation(*file); }, test.message,
                                              Yr::kIOErrorCode);
        PinAndUnpin(*file, kCacheSize);
        file->Close();
    }
}

TEST_F(BlockFileBaseTest, LongerMasterListLoopsAreFoundToo) {
    {
        const auto file = Open();
        for (int i = 0; i < 14 * 6; ++i) file->AllocateMasterBlock();
        file->Close();
    }
    // The last list block points back to the third.
    std::vector<Yr::UInt32> listBlocks;
    for (Yr::UInt32 id = Field(24); id != 0; id = Field(id * 64)) listBlocks.push_back(id);
    ASSERT_EQ(listBlocks.size(), 6u);
    Patch(listBlocks.back() * 64, listBlocks[2]);
    ExpectOpenRefused(64, "Failed to read block file header: invalid master block list.");
}

TEST_F(BlockFileBaseTest, DamagedFreeListsAreRefusedWithoutTouchingThePinsOrTheFile) {
    const struct {
        const char* name;
        std::vector<std::pair<Yr::UInt32, Yr::UInt32>> patches;
    } cases[] = {
        // Free list of the made file: 3 -> 1, count 2; master 20 in list
        // block 21.
        {"head past the file", {{28, 40}}},
        {"head on a master block", {{28, 20}}},
        {"next on the master list block", {{3 * 64, 21}}},
        {"next past the file", {{3 * 64, 40}}},
        {"loop", {{1 * 64, 3}}},
        {"count short of the list", {{32, 1}}},
        {"count beyond the list", {{32, 3}}},
        {"head but no count", {{32, 0}}},
        {"count but no head", {{28, 0}}},
        {"head on itself", {{3 * 64, 3}}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        MakeFile(64, 20);
        {
            const auto file = Open();
            ASSERT_EQ(file->AllocateMasterBlock(), 20u);
            file->FreeBlock(1);
            file->FreeBlock(3);
            file->Close();
        }
        for (const auto& [offset, value] : test.patches) Patch(offset, value);
        const auto file = Open();
        // Allocation may succeed until it meets the damage; it never grows
        // the file while the list is not empty.
        try {
            for (int i = 0; i < 3; ++i) EXPECT_LT(file->AllocateBlock(), 20u);
            ADD_FAILURE() << "damage not found by allocation";
        } catch (const BlockFileException& e) {
            EXPECT_STREQ(e.what(), "Failed to allocate block: invalid free block list.");
        }
        ExpectYrException<BlockFileException>(
            [&] { file->Compact(); }, "Failed to compact block file: invalid free block list.",
            Yr::kIOErrorCode);
        EXPECT_EQ(file->GetBlockCount(), 22u);
        PinAndUnpin(*file, kCacheSize);
        file->Close();
        EXPECT_EQ(ReadFile(m_path).size(), 22u * 64);
    }
}

TEST_F(BlockFileBaseTest, FifteenthMasterBlockStartsASecondListBlock) {
    {
        const auto file = Open();
        EXPECT_EQ(file->AllocateMasterBlock(), 1u);  // list block 2 comes after it
        for (unsigned id = 3; id <= 16; ++id) EXPECT_EQ(file->AllocateMasterBlock(), id);
        EXPECT_EQ(file->GetBlockCount(), 18u);  // list block 17 holds master 16
        file->Close();
    }
    EXPECT_EQ(Field(24), 2u);
    EXPECT_EQ(Field(2 * 64 + 0), 17u);
    EXPECT_EQ(Field(2 * 64 + 4), 14u);
    EXPECT_EQ(Field(2 * 64 + 8), 1u);
    for (Yr::UInt32 i = 1; i < 14; ++i) EXPECT_EQ(Field(2 * 64 + 8 + 4 * i), i + 2);
    EXPECT_EQ(Field(17 * 64 + 0), 0u);
    EXPECT_EQ(Field(17 * 64 + 4), 1u);
    EXPECT_EQ(Field(17 * 64 + 8), 16u);

    auto file = Open();
    Yr::PagedArray<unsigned int, 8> masters;
    EXPECT_EQ(file->GetAllocatedMasterBlocks(masters), 15u);
    std::vector<unsigned> sorted(masters.begin(), masters.end());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted.front(), 1u);
    EXPECT_EQ(sorted.back(), 16u);
    EXPECT_FALSE(file->IsMasterBlock(2));
    EXPECT_FALSE(file->IsMasterBlock(17));
    // The last entry of a list block fills the hole a freed master leaves.
    file->FreeBlock(4);
    EXPECT_FALSE(file->IsMasterBlock(4));
    file->Close();
    EXPECT_EQ(Field(2 * 64 + 4), 13u);
    EXPECT_EQ(Field(2 * 64 + 8 + 4 * 2), 15u);
    file = Open();
    EXPECT_EQ(file->GetAllocatedMasterBlocks(masters), 14u);
    EXPECT_EQ(file->AllocateMasterBlock(), 4u);
    file->Close();
    EXPECT_EQ(Field(2 * 64 + 4), 14u);
    EXPECT_EQ(Field(2 * 64 + 8 + 4 * 13), 4u);
}

TEST_F(BlockFileBaseTest, ReopeningGivesBackEveryBlock) {
    MakeFile(128, 60);
    const auto file = Open(128, 20);
    EXPECT_EQ(file->GetBlockCount(), 60u);
    for (unsigned id = 59; id >= 1; --id)
        ASSERT_EQ(std::string(file->GetBlock(id, false), 128), std::string(128, char(id)));
    EXPECT_EQ(file->GetCacheSize(), 20u);
    EXPECT_EQ(file->GetBlockSize(), 128u);
    file->Close();
}

TEST_F(BlockFileBaseTest, IdentifiersAreChecked) {
    const auto file = Open();
    file->AllocateBlock();
    file->AllocateBlock();
    const std::vector<std::pair<const char*, std::function<void(unsigned)>>> operations = {
        {"GetBlock", [&](unsigned id) { file->GetBlock(id, false); }},
        {"PinBlock", [&](unsigned id) { file->PinBlock(id, true); }},
        {"SetDirty", [&](unsigned id) { file->SetDirty(id, true); }},
        {"Evict", [&](unsigned id) { file->Evict(id); }},
        {"FreeBlock", [&](unsigned id) { file->FreeBlock(id); }},
        {"IsMasterBlock", [&](unsigned id) { file->IsMasterBlock(id); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] { operation(0); }, "Invalid block identifier: block identifier is null.",
            Yr::kIllegalArgumentErrorCode);
        ExpectYrException<BlockNotFoundException>(
            [&] { operation(3); }, "Invalid block identifier: 3: block identifier is not found.",
            Yr::kIOErrorCode);
        ExpectYrException<BlockNotFoundException>(
            [&] { operation(4294967295u); },
            "Invalid block identifier: 4294967295: block identifier is not found.",
            Yr::kIOErrorCode);
    }
    EXPECT_EQ(file->GetFreeBlockCount(), 0u);
    file->Close();
}

TEST_F(BlockFileBaseTest, AClosedFileRefusesEverythingButIsClosed) {
    const auto file = Open();
    file->AllocateBlock();
    EXPECT_FALSE(file->IsClosed());
    file->Close();
    file->Close();
    EXPECT_TRUE(file->IsClosed());
    Yr::PagedArray<unsigned int, 8> masters;
    const std::vector<std::function<void()>> operations = {
        [&] { file->AllocateBlock(); },
        [&] { file->AllocateMasterBlock(); },
        [&] { file->FreeBlock(1); },
        [&] { file->GetBlock(1, false); },
        [&] { file->PinBlock(1, true); },
        [&] { file->SetDirty(1, true); },
        [&] { file->Evict(1); },
        [&] { file->EvictAll(); },
        [&] { file->Flush(true); },
        [&] { file->Compact(); },
        [&] { file->IsMasterBlock(0); },
        [&] { file->GetAllocatedMasterBlocks(masters); },
        [&] { file->GetBlockCount(); },
        [&] { file->GetBlockSize(); },
        [&] { file->GetFreeBlockCount(); },
        [&] { file->GetCacheSize(); },
        [&] { file->SetCacheSize(32); },
        [&] { file->GetLocation(); },
        [&] { file->GetSize(); },
    };
    for (std::size_t i = 0; i < operations.size(); ++i) {
        SCOPED_TRACE(i);
        ExpectYrException<BlockFileException>(operations[i], "Block file is closed.",
                                              Yr::kIOErrorCode);
    }
}

TEST_F(BlockFileBaseTest, BlockSizesTheHeaderOrTheCacheCannotTakeAreRefused) {
    const struct {
        unsigned blockSize;
        const char* message;
    } cases[] = {
        {0, "Invalid block size: block size is 0."},
        {35, "Invalid block size: block size is less than 36."},
        {2097153, "Invalid block size: block size is greater than 2097152."},
        {4194304, "Invalid block size: block size is greater than 2097152."},
    };
    for (const auto& test : cases) {
        ExpectYrException<Yr::IllegalArgumentException>([&] { Open(test.blockSize); }, test.message,
                                                        Yr::kIllegalArgumentErrorCode);
    }
    // The smallest header block works, with 7 entries per list block.
    const auto file = Open(36);
    for (int i = 0; i < 8; ++i) file->AllocateMasterBlock();
    EXPECT_EQ(file->GetBlockCount(), 11u);
    file->Close();
}

TEST_F(BlockFileBaseTest, AFailedWriteLeavesTheFileUsable) {
    FailingWrites fileSystem{::IO::FileSystem::Get()};
    const ::IO::ScopedFileSystem installed{fileSystem};
    auto file = Open();
    for (unsigned i = 1; i < 40; ++i) {
        const unsigned id = file->AllocateMasterBlock();
        std::fill_n(file->GetBlock(id, true), 64, static_cast<char>(id));
    }
    fileSystem.failWrites = true;
    try {
        file->Flush(false);
        ADD_FAILURE() << "the write did not fail";
    } catch (const BlockFileException& e) {
        EXPECT_EQ(std::string(e.what()).rfind("Failed to write block to block file", 0), 0u)
            << e.what();
    }
    fileSystem.failWrites = false;
    const unsigned blockCount = file->GetBlockCount();
    PinAndUnpin(*file, kCacheSize);
    file->Close();
    file = Open();
    EXPECT_EQ(file->GetBlockCount(), blockCount);
    Yr::PagedArray<unsigned int, 8> masters;
    EXPECT_EQ(file->GetAllocatedMasterBlocks(masters), 39u);
    for (unsigned id : masters)
        EXPECT_EQ(std::string(file->GetBlock(id, false), 64), std::string(64, char(id)));
    file->Close();
}

}  // namespace
