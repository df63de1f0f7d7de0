#include "Common/Containers/BlockFileBase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockNotFoundException.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/BlockFileImage.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Common::Containers::BlockFileBase;
using Morvelan::Common::Containers::BlockFileException;
using Morvelan::Common::Containers::BlockNotFoundException;
using Morvelan::Testing::At;
using Morvelan::Testing::BlockFileImage;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::WriteFile;
using Patches = std::vector<std::pair<Yr::UInt32, Yr::UInt32>>;  // offset in the file, value
using Ids = std::vector<unsigned>;

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
    // the byte n, and `masters` master blocks after them.
    void MakeFile(unsigned blockSize, unsigned blocks, unsigned masters = 0) {
        std::remove(m_path.c_str());
        const auto file = Open(blockSize);
        for (unsigned i = 1; i < blocks; ++i) {
            const unsigned id = file->AllocateBlock();
            std::fill_n(file->GetBlock(id, true), blockSize, static_cast<char>(id));
        }
        for (unsigned i = 0; i < masters; ++i) file->AllocateMasterBlock();
        file->Close();
    }

    BlockFileImage Image() const { return BlockFileImage(ReadFile(m_path), 64); }

    void Patch(const Patches& patches) {
        BlockFileImage image = Image();
        for (const auto& [offset, value] : patches) image.Set(offset, value);
        WriteFile(m_path, image.Bytes());
    }

    void ExpectOpenRefused(unsigned blockSize, const std::string& message) {
        ExpectYrException<BlockFileException>([&] { Open(blockSize); }, message.c_str(),
                                              Yr::kIOErrorCode);
    }

    // Holds `count` distinct blocks pinned at once: fails if an operation
    // left the header pinned and `count` is the whole cache.
    static void PinAndUnpin(BlockFileBase& file, unsigned count = kCacheSize) {
        for (unsigned id = 1; id <= count; ++id) {
            file.GetBlock(id, false);
            file.PinBlock(id, true);
        }
        for (unsigned id = 1; id <= count; ++id) file.PinBlock(id, false);
    }

    static std::string Bytes(BlockFileBase& file, unsigned id) {
        return std::string(file.GetBlock(id, false), file.GetBlockSize());
    }

    ScopedTempFolder m_folder;
    std::string m_path = m_folder.PathOf("blocks");
};

// Freed blocks come back last freed first; Compact gives back only the
// trailing run of free blocks and lists the rest smallest first. The blocks
// still sit in the cache with their old bytes, and come back zeroed.
TEST_F(BlockFileBaseTest, FreedAndCompactedBlocksComeBackInOrderAndZeroed) {
    const struct {
        Ids freed;
        bool compact;
        unsigned blockCount;
        Ids handedOut;  // by allocation after that, the last one new
    } cases[] = {
        {{2, 4, 1}, false, 6, {1, 4, 2, 6}}, {{3, 4, 5}, true, 3, {3}},
        {{5, 3, 4}, true, 3, {3}},           {{2, 4}, true, 6, {2, 4, 6}},
        {{5, 2, 1}, true, 5, {1, 2, 5}},     {{4}, true, 6, {4, 6}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::PrintToString(test.freed));
        MakeFile(64, 6);
        const auto file = Open();
        for (unsigned id : test.freed) file->FreeBlock(id);
        if (test.compact) file->Compact();
        EXPECT_EQ(file->GetBlockCount(), test.blockCount);
        EXPECT_EQ(file->GetFreeBlockCount(), test.handedOut.size() - 1);
        for (unsigned id : test.handedOut) {
            EXPECT_EQ(file->AllocateBlock(), id);
            EXPECT_EQ(Bytes(*file, id), std::string(64, '\0'));
        }
        EXPECT_EQ(file->GetSize(), (test.blockCount + 1) * 64u);
        file->Close();
        EXPECT_EQ(ReadFile(m_path).size(), (test.blockCount + 1) * 64u);
    }
}

TEST_F(BlockFileBaseTest, DamageOnOpenIsRefusedInOrder) {
    // 16 blocks of 64 bytes: masters 1, 3..15 fill list block 2 (14
    // entries).
    const struct {
        Patches patches;
        unsigned blockSize;
        const char* fault;
    } cases[] = {
        {{{0, 0x46427258}}, 64, "invalid block file magic."},
        {{{0, 0}, {4, 2}}, 36, "invalid block file magic."},
        {{{4, 2}}, 64, "unsupported block file version."},
        {{{8, 1}, {16, 17}}, 64, "unsupported block file version."},
        {{{16, 17}}, 64, "invalid block count."},
        {{{16, 0x4000010}}, 64, "invalid block count."},  // wraps to 1024 bytes in 32 bits
        {{}, 36, "invalid block size."},
        {{{32, 16}}, 64, "invalid free block count."},
        {{{16, 0}}, 64, "invalid free block count."},
        // A list block looping on itself, with entries or without.
        {{{2 * 64, 2}}, 64, "invalid master block list."},
        {{{2 * 64, 2}, {2 * 64 + 4, 0}}, 64, "invalid master block list."},
        // The head, the next list block or an entry past the file.
        {{{24, 99}}, 64, "invalid master block list."},
        {{{2 * 64, 16}}, 64, "invalid master block list."},
        {{{2 * 64 + 8, 16}}, 64, "invalid master block list."},
        // Too many entries, one listed twice, the list block listed.
        {{{2 * 64 + 4, 15}}, 64, "invalid master block list."},
        {{{2 * 64 + 12, 1}}, 64, "invalid master block list."},
        {{{2 * 64 + 8, 2}}, 64, "invalid master block list."},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::PrintToString(test.patches));
        MakeFile(64, 1, 14);
        Patch(test.patches);
        ExpectOpenRefused(test.blockSize,
                          std::string("Failed to read block file header: ") + test.fault);
    }
    // Six list blocks, the last pointing back to the third.
    MakeFile(64, 1, 14 * 6);
    Ids listBlocks;
    for (Yr::UInt32 id = Image().Get(24); id != 0; id = Image().Get(id * 64))
        listBlocks.push_back(id);
    ASSERT_EQ(listBlocks.size(), 6u);
    Patch({{listBlocks.back() * 64, listBlocks[2]}});
    ExpectOpenRefused(64, "Failed to read block file header: invalid master block list.");
    // Nothing held the file: it opens once the damage is gone.
    MakeFile(64, 1, 14);
    Open()->Close();
}

TEST_F(BlockFileBaseTest, MasterListsDamagedWhileOpenAreRefused) {
    // List block 2 is full (14 entries), and a client may write any block: a
    // loop, the next list block past the file, an entry count above the
    // capacity, a master missing from its list.
    const struct {
        Yr::UInt32 offset, value;
        bool freeing;
    } cases[] = {{0, 2, false}, {0, 99, false}, {4, 99, true}, {4, 0, true}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.value);
        MakeFile(64, 1, 14);
        const auto file = Open();
        file->AllocateBlock();
        Format::WriteField(file->GetBlock(2, true), test.offset, test.value);
        ExpectYrException<BlockFileException>(
            [&] { test.freeing ? file->FreeBlock(1) : void(file->AllocateMasterBlock()); },
            test.freeing ? "Failed to free block: invalid master block list."
                         : "Failed to allocate master block: invalid master block list.",
            Yr::kIOErrorCode);
        PinAndUnpin(*file);
        file->Close();
    }
}

TEST_F(BlockFileBaseTest, DamagedFreeListsAreRefusedWithoutTouchingThePinsOrTheFile) {
    // Master 20 in list block 21; the free list, made as freeing 1 then 3
    // makes it: 3 -> 1, count 2.
    const Patches freeList = {{28, 3}, {32, 2}, {3 * 64, 1}, {1 * 64, 0}};
    const struct {
        const char* name;
        Patches patches;
    } cases[] = {
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
        MakeFile(64, 20, 1);
        Patch(freeList);
        Patch(test.patches);
        const auto file = Open();
        // Allocation may succeed until it meets the damage; it never grows
        // the file while the list is not empty.
        ExpectYrException<BlockFileException>(
            [&] {
                for (int i = 0; i < 3; ++i) EXPECT_LT(file->AllocateBlock(), 20u);
            },
            "Failed to allocate block: invalid free block list.", Yr::kIOErrorCode);
        ExpectYrException<BlockFileException>(
            [&] { file->Compact(); }, "Failed to compact block file: invalid free block list.",
            Yr::kIOErrorCode);
        EXPECT_EQ(file->GetBlockCount(), 22u);
        PinAndUnpin(*file);
        file->Close();
        EXPECT_EQ(ReadFile(m_path).size(), 22u * 64);
    }
}

TEST_F(BlockFileBaseTest, FifteenthMasterBlockStartsASecondListBlock) {
    auto file = Open();
    Ids masters;
    for (int i = 0; i < 15; ++i) masters.push_back(file->AllocateMasterBlock());
    // List block 2 comes after master 1, list block 17 after master 16.
    EXPECT_EQ(masters, (Ids{1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
    EXPECT_EQ(file->GetBlockCount(), 18u);
    file->Close();
    BlockFileImage image = Image();
    EXPECT_EQ(image.Get(Format::kMasterListHeadOffset), 2u);
    EXPECT_EQ(image.Fields(2, 16),
              (std::vector<Yr::UInt32>{17, 14, 1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(image.Fields(17, 3), (std::vector<Yr::UInt32>{0, 1, 16}));

    file = Open();
    Yr::PagedArray<unsigned int, 8> listed;
    EXPECT_EQ(file->GetAllocatedMasterBlocks(listed), 15u);
    EXPECT_FALSE(file->IsMasterBlock(2));
    EXPECT_FALSE(file->IsMasterBlock(17));
    // The last entry of a list block fills the hole a freed master leaves.
    file->FreeBlock(4);
    EXPECT_FALSE(file->IsMasterBlock(4));
    file->Close();
    EXPECT_EQ(Image().Fields(2, 5), (std::vector<Yr::UInt32>{17, 13, 1, 3, 15}));
    file = Open();
    EXPECT_EQ(file->GetAllocatedMasterBlocks(listed), 14u);
    EXPECT_EQ(file->AllocateMasterBlock(), 4u);
    file->Close();
    EXPECT_EQ(Image().Get(2 * 64 + 4), 14u);
    EXPECT_EQ(Image().Get(2 * 64 + 8 + 4 * 13), 4u);
}

TEST_F(BlockFileBaseTest, IdentifiersAreChecked) {
    MakeFile(64, 3);
    const auto file = Open();
    const std::vector<std::pair<const char*, std::function<void(unsigned)>>> operations = {
        {"GetBlock", [&](unsigned id) { file->GetBlock(id, false); }},
        {"PinBlock", [&](unsigned id) { file->PinBlock(id, true); }},
        {"SetDirty", [&](unsigned id) { file->SetDirty(id, true); }},
        {"Evict", [&](unsigned id) { file->Evict(id); }},
        {"FreeBlock", [&](unsigned id) { file->FreeBlock(id); }},
        {"IsMasterBlock", [&](unsigned id) { file->IsMasterBlock(id); }}};
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] { operation(0); }, "Invalid block identifier: block identifier is null.",
            Yr::kIllegalArgumentErrorCode);
        for (const unsigned id : {3u, 4294967295u}) {
            const std::string message = "Invalid block identifier: " + std::to_string(id) +
                                        ": block identifier is not found.";
            ExpectYrException<BlockNotFoundException>([&] { operation(id); }, message.c_str(),
                                                      Yr::kIOErrorCode);
        }
    }
    EXPECT_EQ(file->GetFreeBlockCount(), 0u);
    file->Close();
}

TEST_F(BlockFileBaseTest, AClosedFileRefusesEverythingButIsClosed) {
    MakeFile(64, 2);
    const auto file = Open();
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
        [&] { file->GetSize(); }};
    for (std::size_t i = 0; i < operations.size(); ++i) {
        SCOPED_TRACE(i);
        ExpectYrException<BlockFileException>(operations[i], "Block file is closed.",
                                              Yr::kIOErrorCode);
    }
}

TEST_F(BlockFileBaseTest, BlockSizesTheHeaderOrTheCacheCannotTakeAreRefused) {
    const std::pair<unsigned, const char*> cases[] = {
        {0, "Invalid block size: block size is 0."},
        {35, "Invalid block size: block size is less than 36."},
        {2097153, "Invalid block size: block size is greater than 2097152."},
    };
    for (const auto& [blockSize, message] : cases) {
        ExpectYrException<Yr::IllegalArgumentException>([&] { Open(blockSize); }, message,
                                                        Yr::kIllegalArgumentErrorCode);
    }
    // The smallest header block works, with 7 entries per list block.
    const auto file = Open(36, 20);
    EXPECT_EQ(file->GetBlockSize(), 36u);
    EXPECT_EQ(file->GetCacheSize(), 20u);
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
    PinAndUnpin(*file);
    file->Close();
    file = Open();
    EXPECT_EQ(file->GetBlockCount(), blockCount);
    Yr::PagedArray<unsigned int, 8> masters;
    EXPECT_EQ(file->GetAllocatedMasterBlocks(masters), 39u);
    for (unsigned id : masters) EXPECT_EQ(Bytes(*file, id), std::string(64, char(id)));
    file->Close();
}

}  // namespace
