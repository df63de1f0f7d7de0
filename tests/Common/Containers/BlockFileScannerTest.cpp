// Block files made byte by byte, sound and damaged in every way the scanner
// knows, and what it reports for each.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Common/Containers/BlockFileFormat.h"
#include "Common/Containers/BlockFileScanner.h"
#include "Common/IO/FileNotFoundException.h"
#include "Common/IO/NotFileException.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Common::Containers::BlockFileScanner;
using Morvelan::Testing::At;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::WriteFile;
using Kind = BlockFileScanner::FaultKind;

// The bytes of a block file: a header, then blocks whose leading fields are
// set one by one, the rest zeros.
class BlockFileImage {
public:
    BlockFileImage(Yr::UInt32 blockSize, Yr::UInt32 blockCount)
        : m_blockSize(blockSize), m_bytes(std::string(std::size_t(blockSize) * blockCount, '\0')) {
        Header(Format::kMagicOffset, Format::kMagic);
        Header(Format::kMajorVersionOffset, Format::kMajorVersion);
        Header(Format::kBlockCountOffset, blockCount);
        Header(Format::kBlockSizeOffset, blockSize);
    }
    void Header(Yr::UInt32 offset, Yr::UInt32 value) { Fields(0, {value}, offset); }
    // `values` from `offset` of the block on, four bytes each.
    void Fields(Yr::UInt32 block, const std::vector<Yr::UInt32>& values, Yr::UInt32 offset = 0) {
        for (const Yr::UInt32 value : values) {
            Format::WriteField(m_bytes.data() + std::size_t(block) * m_blockSize + offset, 0,
                               value);
            offset += 4;
        }
    }
    std::string& Bytes() { return m_bytes; }

private:
    Yr::UInt32 m_blockSize;
    std::string m_bytes;
};

// Eight blocks of 64 bytes: block 1 lists master blocks 2 and 3, blocks 4
// and 6 are free, 5 and 7 belong to the client.
BlockFileImage SoundImage() {
    BlockFileImage image(64, 8);
    image.Header(Format::kMasterListHeadOffset, 1);
    image.Header(Format::kFreeListHeadOffset, 4);
    image.Header(Format::kFreeBlockCountOffset, 2);
    image.Fields(1, {0, 2, 2, 3});
    image.Fields(4, {6});
    image.Fields(6, {0});
    return image;
}

using Faults = std::vector<std::pair<Kind, Yr::UInt32>>;

Faults KindsAndBlocks(const BlockFileScanner& scanner) {
    Faults faults;
    for (const auto& fault : scanner.GetFaults()) faults.emplace_back(fault.kind, fault.block);
    return faults;
}

class BlockFileScannerTest : public testing::Test {
protected:
    BlockFileScanner Scan(BlockFileImage& image) {
        WriteFile(m_path, image.Bytes());
        return BlockFileScanner(At(m_path));
    }

    ScopedTempFolder m_folder;
    std::string m_path = m_folder.PathOf("blocks");
};

TEST_F(BlockFileScannerTest, ReadsTheHeaderAndWalksASoundFile) {
    BlockFileImage image = SoundImage();
    const BlockFileScanner scanner = Scan(image);
    EXPECT_TRUE(scanner.IsClean());
    EXPECT_EQ(scanner.GetFileSize(), 512u);
    const BlockFileScanner::Header& header = scanner.GetHeader();
    EXPECT_EQ(header.magic, Format::kMagic);
    EXPECT_EQ(header.blockCount, 8u);
    EXPECT_EQ(header.blockSize, 64u);
    EXPECT_EQ(header.masterListHead, 1u);
    EXPECT_EQ(header.freeListHead, 4u);
    EXPECT_EQ(header.freeBlockCount, 2u);
    EXPECT_EQ(scanner.GetFreeListLength(), 2u);
    EXPECT_EQ(scanner.GetMasterListBlocks(), std::vector<Yr::UInt32>{1});
    EXPECT_EQ(scanner.GetMasterBlocks(), (std::vector<Yr::UInt32>{2, 3}));
}

// 64-byte blocks hold 14 entries: the fifteenth master block goes into a
// second list block, as the block file puts it.
TEST_F(BlockFileScannerTest, FollowsAMasterListOverSeveralBlocks) {
    BlockFileImage image(64, 18);
    image.Header(Format::kMasterListHeadOffset, 1);
    image.Fields(1, {17, 14, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
    image.Fields(17, {0, 1, 16});
    const BlockFileScanner scanner = Scan(image);
    EXPECT_TRUE(scanner.IsClean());
    EXPECT_EQ(scanner.GetMasterListBlocks(), (std::vector<Yr::UInt32>{1, 17}));
    EXPECT_EQ(scanner.GetMasterBlocks().size(), 15u);
    EXPECT_EQ(scanner.GetMasterBlocks().back(), 16u);
}

TEST_F(BlockFileScannerTest, ReportsEveryKindOfDamage) {
    struct Case {
        const char* name;
        std::function<void(BlockFileImage&)> damage;
        Faults expected;
    };
    const auto header = [](Yr::UInt32 offset, Yr::UInt32 value) {
        return [=](BlockFileImage& image) { image.Header(offset, value); };
    };
    const auto fields = [](Yr::UInt32 block, const std::vector<Yr::UInt32>& values) {
        return [=](BlockFileImage& image) { image.Fields(block, values); };
    };
    const Case cases[] = {
        {"header cut short",
         [](BlockFileImage& image) { image.Bytes().resize(35); },
         {{Kind::HeaderTruncated, 0}}},
        {"wrong magic", header(Format::kMagicOffset, 0x46427258), {{Kind::WrongMagic, 0}}},
        {"major version 2",
         header(Format::kMajorVersionOffset, 2),
         {{Kind::UnsupportedVersion, 0}}},
        {"minor version 1",
         header(Format::kMinorVersionOffset, 1),
         {{Kind::UnsupportedVersion, 0}}},
        {"block size too small",
         header(Format::kBlockSizeOffset, 35),
         {{Kind::InvalidBlockSize, 0}}},
        {"block size too large",
         header(Format::kBlockSizeOffset, (16 << 20) + 1),
         {{Kind::InvalidBlockSize, 0}}},
        {"block count past the file",
         header(Format::kBlockCountOffset, 9),
         {{Kind::BlockCountBeyondFile, 0}}},
        {"block count past 4 GiB",
         header(Format::kBlockCountOffset, 0x4000001),
         {{Kind::BlockCountBeyondFile, 0}, {Kind::BlockCountBeyondFourGiB, 0}}},
        {"free count not below block count",
         header(Format::kFreeBlockCountOffset, 8),
         {{Kind::FreeCountTooLarge, 0}, {Kind::FreeCountMismatch, 0}}},
        {"free count wrong",
         header(Format::kFreeBlockCountOffset, 3),
         {{Kind::FreeCountMismatch, 0}}},
        {"free block out of range", fields(6, {12}), {{Kind::FreeBlockOutOfRange, 12}}},
        {"free head out of range",
         header(Format::kFreeListHeadOffset, 8),
         {{Kind::FreeBlockOutOfRange, 8}}},
        {"free block past the end of the file",
         [](BlockFileImage& image) {
             image.Header(Format::kBlockCountOffset, 10);
             image.Fields(6, {9});
         },
         {{Kind::BlockCountBeyondFile, 0}, {Kind::FreeBlockPastEndOfFile, 9}}},
        {"free list cycle", fields(6, {4}), {{Kind::FreeListCycle, 4}}},
        {"free block pointing at itself", fields(4, {4}), {{Kind::FreeListCycle, 4}}},
        {"list block out of range", fields(1, {8, 2, 2, 3}), {{Kind::ListBlockOutOfRange, 8}}},
        {"list block past the end of the file",
         [](BlockFileImage& image) {
             image.Header(Format::kBlockCountOffset, 9);
             image.Header(Format::kMasterListHeadOffset, 8);
         },
         {{Kind::BlockCountBeyondFile, 0}, {Kind::ListBlockPastEndOfFile, 8}}},
        {"master list cycle",
         [](BlockFileImage& image) {
             image.Fields(1, {7});
             image.Fields(7, {1, 1, 5});
         },
         {{Kind::MasterListCycle, 1}}},
        {"list block on the free list", fields(1, {6, 2, 2, 3}), {{Kind::ListBlockFree, 6}}},
        {"entry count over capacity",
         fields(1, {0, 15, 2, 3}),
         {{Kind::EntryCountOverCapacity, 1}}},
        {"entry naming the header", fields(1, {0, 2, 2, 0}), {{Kind::MasterEntryOutOfRange, 0}}},
        {"entry out of range", fields(1, {0, 2, 8, 3}), {{Kind::MasterEntryOutOfRange, 8}}},
        {"master block on the free list", fields(1, {0, 2, 2, 6}), {{Kind::MasterBlockFree, 6}}},
        {"master block listed twice",
         fields(1, {0, 3, 2, 3, 2}),
         {{Kind::MasterBlockListedTwice, 2}}},
        // Block 7 is known as a list block only after the entry names it.
        {"master block that is a later list block",
         [](BlockFileImage& image) {
             image.Fields(1, {7, 2, 2, 7});
             image.Fields(7, {0, 1, 5});
         },
         {{Kind::MasterBlockIsListBlock, 7}}},
    };
    for (const Case& c : cases) {
        BlockFileImage image = SoundImage();
        c.damage(image);
        const BlockFileScanner scanner = Scan(image);
        EXPECT_EQ(KindsAndBlocks(scanner), c.expected) << c.name;
        for (const auto& fault : scanner.GetFaults()) EXPECT_FALSE(fault.text.IsEmpty()) << c.name;
    }
}

TEST_F(BlockFileScannerTest, StopsAtAHeaderThatLeavesNothingToWalk) {
    BlockFileImage image = SoundImage();
    image.Header(Format::kBlockSizeOffset, 0);
    const BlockFileScanner scanner = Scan(image);
    EXPECT_TRUE(scanner.HasHeader());
    EXPECT_FALSE(scanner.HasWalkedLists());
    EXPECT_EQ(scanner.GetFreeListLength(), 0u);
    EXPECT_TRUE(scanner.GetMasterBlocks().empty());
}

// A free list through every block of a larger file, closed into a loop at
// its far end: each block is visited once.
TEST_F(BlockFileScannerTest, EndsLongCycles) {
    const Yr::UInt32 count = 5000;
    BlockFileImage image(36, count);
    image.Header(Format::kFreeListHeadOffset, 1);
    image.Header(Format::kFreeBlockCountOffset, count - 1);
    for (Yr::UInt32 block = 1; block < count; ++block)
        image.Fields(block, {block + 1 < count ? block + 1 : 2});
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
    Morvelan::Testing::ExpectYrException<Morvelan::Common::IO::FileNotFoundException>(
        [&] { BlockFileScanner scanner(At(missing)); },
        ("File is not found: '" + missing + "'.").c_str(), -7003);
    Morvelan::Testing::ExpectYrException<Morvelan::Common::IO::NotFileException>(
        [&] { BlockFileScanner scanner(At(m_folder.GetPath())); },
        ("Not a file: '" + m_folder.GetPath() + "'.").c_str(), -7003);
}

}  // namespace
