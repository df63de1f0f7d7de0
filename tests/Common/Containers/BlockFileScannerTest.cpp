// Block files made byte by byte, sound and damaged in every way the scanner
// knows, and what it reports for each.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "Common/Containers/BlockFileScanner.h"
#include "Common/IO/FileNotFoundException.h"
#include "Common/IO/NotFileException.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Exceptions.h"
#include "tests/support/BlockFileImage.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Common::Containers::BlockFileScanner;
using Morvelan::Testing::At;
using Morvelan::Testing::BlockFileImage;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::WriteFile;
using Kind = BlockFileScanner::FaultKind;
using Faults = std::vector<std::pair<Kind, Yr::UInt32>>;

// Eight blocks of 64 bytes: block 1 lists master blocks 2 and 3, blocks 4
// and 6 are free, 5 and 7 belong to the client.
BlockFileImage SoundImage() {
    BlockFileImage image(64, 8);
    image.SetFields(0, {1, 4, 2}, Format::kMasterListHeadOffset);
    image.SetFields(1, {0, 2, 2, 3});
    image.SetFields(4, {6});
    return image;
}

class BlockFileScannerTest : public testing::Test {
protected:
    BlockFileScanner Scan(BlockFileImage& image) {
        WriteFile(m_path, image.Bytes());
        return BlockFileScanner(At(m_path));
    }

    static Faults KindsAndBlocks(const BlockFileScanner& scanner) {
        Faults faults;
        for (const auto& fault : scanner.GetFaults()) faults.emplace_back(fault.kind, fault.block);
        return faults;
    }

    ScopedTempFolder m_folder;
    std::string m_path = m_folder.PathOf("blocks");
};

// 64-byte blocks hold 14 entries: the fifteenth master block goes into a
// second list block, as the block file puts it.
TEST_F(BlockFileScannerTest, FollowsAMasterListOverSeveralBlocks) {
    BlockFileImage image(64, 18);
    image.Set(Format::kMasterListHeadOffset, 1);
    image.SetFields(1, {17, 14, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
    image.SetFields(17, {0, 1, 16});
    const BlockFileScanner scanner = Scan(image);
    EXPECT_TRUE(scanner.IsClean());
    EXPECT_EQ(scanner.GetMasterListBlocks(), (std::vector<Yr::UInt32>{1, 17}));
    EXPECT_EQ(scanner.GetMasterBlocks().size(), 15u);
    EXPECT_EQ(scanner.GetMasterBlocks().back(), 16u);
}

TEST_F(BlockFileScannerTest, ReportsEveryKindOfDamage) {
    using enum Kind;
    constexpr Yr::UInt32 kCount = Format::kBlockCountOffset, kSize = Format::kBlockSizeOffset;
    constexpr Yr::UInt32 kFreeCount = Format::kFreeBlockCountOffset;
    constexpr Yr::UInt32 kList = 64, kBlock6 = 6 * 64, kBlock7 = 7 * 64;
    const struct {
        std::vector<std::pair<Yr::UInt32, Yr::UInt32>> edits;  // offset in the file, value
        Faults expected;
    } cases[] = {
        {{{Format::kMagicOffset, 0x46427258}}, {{WrongMagic, 0}}},
        {{{Format::kMajorVersionOffset, 2}}, {{UnsupportedVersion, 0}}},
        {{{Format::kMinorVersionOffset, 1}}, {{UnsupportedVersion, 0}}},
        {{{kSize, 35}}, {{InvalidBlockSize, 0}}},
        {{{kSize, (16 << 20) + 1}}, {{InvalidBlockSize, 0}}},
        {{{kCount, 9}}, {{BlockCountBeyondFile, 0}}},
        {{{kCount, 0x4000001}}, {{BlockCountBeyondFile, 0}, {BlockCountBeyondFourGiB, 0}}},
        {{{kFreeCount, 8}}, {{FreeCountTooLarge, 0}, {FreeCountMismatch, 0}}},
        {{{kFreeCount, 3}}, {{FreeCountMismatch, 0}}},
        {{{kBlock6, 12}}, {{FreeBlockOutOfRange, 12}}},
        {{{Format::kFreeListHeadOffset, 8}}, {{FreeBlockOutOfRange, 8}}},
        {{{kCount, 10}, {kBlock6, 9}}, {{BlockCountBeyondFile, 0}, {FreeBlockPastEndOfFile, 9}}},
        {{{kBlock6, 4}}, {{FreeListCycle, 4}}},
        {{{4 * 64, 4}}, {{FreeListCycle, 4}}},
        {{{kList, 8}}, {{ListBlockOutOfRange, 8}}},
        {{{kCount, 9}, {Format::kMasterListHeadOffset, 8}},
         {{BlockCountBeyondFile, 0}, {ListBlockPastEndOfFile, 8}}},
        {{{kList, 7}, {kBlock7, 1}, {kBlock7 + 4, 1}, {kBlock7 + 8, 5}}, {{MasterListCycle, 1}}},
        {{{kList, 6}}, {{ListBlockFree, 6}}},
        {{{kList + 4, 15}}, {{EntryCountOverCapacity, 1}}},
        {{{kList + 12, 0}}, {{MasterEntryOutOfRange, 0}}},
        {{{kList + 8, 8}}, {{MasterEntryOutOfRange, 8}}},
        {{{kList + 12, 6}}, {{MasterBlockFree, 6}}},
        {{{kList + 4, 3}, {kList + 16, 2}}, {{MasterBlockListedTwice, 2}}},
        // Block 7 is known as a list block only after the entry names it.
        {{{kList, 7}, {kList + 12, 7}, {kBlock7 + 4, 1}, {kBlock7 + 8, 5}},
         {{MasterBlockIsListBlock, 7}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        BlockFileImage image = SoundImage();
        for (const auto& [offset, value] : c.edits) image.Set(offset, value);
        const BlockFileScanner scanner = Scan(image);
        EXPECT_EQ(KindsAndBlocks(scanner), c.expected);
        for (const auto& fault : scanner.GetFaults()) EXPECT_FALSE(fault.text.IsEmpty());
    }
}

// A header cut short, or one that names no usable block size, leaves no
// list to walk.
TEST_F(BlockFileScannerTest, StopsAtAHeaderThatLeavesNothingToWalk) {
    for (const bool cut : {true, false}) {
        BlockFileImage image = SoundImage();
        if (cut) image.Bytes().resize(35);
        if (!cut) image.Set(Format::kBlockSizeOffset, 0);
        const BlockFileScanner scanner = Scan(image);
        EXPECT_EQ(scanner.HasHeader(), !cut);
        EXPECT_FALSE(scanner.HasWalkedLists());
        EXPECT_EQ(scanner.GetFreeListLength(), 0u);
        EXPECT_TRUE(scanner.GetMasterBlocks().empty());
        if (cut) {
            EXPECT_EQ(KindsAndBlocks(scanner), (Faults{{Kind::HeaderTruncated, 0}}));
        }
    }
}

// A free list through every block of a larger file, closed into a loop at
// its far end: each block is visited once.
TEST_F(BlockFileScannerTest, EndsLongCycles) {
    const Yr::UInt32 count = 5000;
    BlockFileImage image(36, count);
    image.SetFields(0, {1, count - 1}, Format::kFreeListHeadOffset);
    for (Yr::UInt32 block = 1; block < count; ++block)
        image.SetFields(block, {block + 1 < count ? block + 1 : 2});
    const BlockFileScanner scanner = Scan(image);
    EXPECT_EQ(KindsAndBlocks(scanner), (Faults{{Kind::FreeListCycle, 2}}));
    EXPECT_EQ(scanner.GetFreeListLength(), count - 1);
}

// Neither a write nor a lock: the file is looked at as it is, even while a
// block file holds it.
class ReadOnlyFileSystem final : public ::IO::FileSystemWrapper {
public:
    using FileSystemWrapper::FileSystemWrapper;
    ::IO::Status Open(const std::string& path, OpenMode mode, int& descriptor) override {
        if (mode != OpenMode::Read) ADD_FAILURE() << "opened for writing: " << path;
        return FileSystemWrapper::Open(path, mode, descriptor);
    }
    ::IO::Status Lock(int, LockMode) override {
        ADD_FAILURE() << "locked";
        return ::IO::kFileAccessDenied;
    }
    ::IO::Status ReadAt(int descriptor, Yr::UInt64 offset, void* buffer, std::size_t size,
                        std::size_t& count) override {
        if (failReads) return ::IO::kSystemErrorBase | 5;
        return FileSystemWrapper::ReadAt(descriptor, offset, buffer, size, count);
    }
    bool failReads = false;
};

TEST_F(BlockFileScannerTest, OnlyReadsAndThrowsWhenItCannot) {
    BlockFileImage image = SoundImage();
    WriteFile(m_path, image.Bytes());
    ReadOnlyFileSystem fileSystem(::IO::FileSystem::Get());
    const ::IO::ScopedFileSystem installed(fileSystem);
    EXPECT_TRUE(BlockFileScanner(At(m_path)).IsClean());

    fileSystem.failReads = true;
    try {
        BlockFileScanner scanner(At(m_path));
        ADD_FAILURE() << "no exception";
    } catch (const Yr::IOException& e) {
        EXPECT_EQ(std::string(e.what()).rfind("Failed to read block file: '" + m_path + "'.", 0),
                  0u)
            << e.what();
        EXPECT_EQ(e.GetErrorCode(), -7003);
    }
}

TEST_F(BlockFileScannerTest, RefusesWhatIsNotAFile) {
    const std::string missing = m_folder.PathOf("missing");
    ExpectYrException<Morvelan::Common::IO::FileNotFoundException>(
        [&] { BlockFileScanner scanner(At(missing)); },
        ("File is not found: '" + missing + "'.").c_str(), -7003);
    ExpectYrException<Morvelan::Common::IO::NotFileException>(
        [&] { BlockFileScanner scanner(At(m_folder.GetPath())); },
        ("Not a file: '" + m_folder.GetPath() + "'.").c_str(), -7003);
}

}  // namespace
