#include "Common/Containers/BlockFileScanner.h"

#include <algorithm>

#include "Common/Containers/BlockFileFormat.h"
#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystem.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::Containers {
namespace {

using ::IO::FileSystem;
using Yr::UniString;
namespace Format = BlockFileFormat;

constexpr const char* kSourceUnit = "Common/Containers/BlockFileScanner";
constexpr Yr::UInt64 kFourGiB = Yr::UInt64(1) << 32;

// What the walks have found a block to be; one block may turn out several.
constexpr unsigned char kFree = 1;
constexpr unsigned char kListBlock = 2;
constexpr unsigned char kMaster = 4;

UniString Referrer(Yr::UInt32 from) {
    return from == 0 ? UniString("the header") : UniString::Printf("block %lu", from);
}

}  // namespace

// The file, open for reading only, and what is known of each of its blocks.
class BlockFileScanner::Walk final {
public:
    explicit Walk(const ::IO::Location& location) : m_location(location) {
        IO::CheckFile(location, kSourceUnit, __LINE__);
        FileSystem& fileSystem = FileSystem::Get();
        const auto failure = [&] {
            return UniString::Printf("Failed to open block file for reading: '%T'.",
                                     location.GetDisplayText());
        };
        const std::string path = IO::LocationToPath(location).ToUtf8();
        IO::CheckFileError(
            failure, [] { return UniString("Failed to open file."); },
            fileSystem.Open(path, FileSystem::OpenMode::Read, m_descriptor), kSourceUnit, __LINE__);
        const ::IO::Status status = fileSystem.GetSize(m_descriptor, m_size);
        if (status != ::IO::kSuccess) {
            fileSystem.Close(m_descriptor);
            IO::CheckFileError(
                failure, [] { return UniString("Failed to get file size."); }, status, kSourceUnit,
                __LINE__);
        }
    }
    ~Walk() { FileSystem::Get().Close(m_descriptor); }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    Yr::UInt64 GetSize() const { return m_size; }

    // The file must still hold all `size` bytes at `offset`.
    void Read(Yr::UInt64 offset, void* buffer, Yr::UInt32 size) {
        const auto failure = [&] {
            return UniString::Printf("Failed to read block file: '%T'.",
                                     m_location.GetDisplayText());
        };
        std::size_t count = 0;
        IO::CheckFileError(failure,
                           FileSystem::Get().ReadAt(m_descriptor, offset, buffer, size, count),
                           kSourceUnit, __LINE__);
        if (count < size)
            throw Yr::IOException(failure() + " The file was cut short while it was read.",
                                  kSourceUnit, __LINE__, Yr::kIOErrorCode);
    }

    // Blocks from `count` on are neither read nor marked.
    void TrackBlocks(Yr::UInt32 count) { m_marks.assign(count, 0); }
    Yr::UInt32 GetTrackedBlocks() const { return static_cast<Yr::UInt32>(m_marks.size()); }
    bool Has(Yr::UInt32 block, unsigned char mark) const {
        return block < m_marks.size() && (m_marks[block] & mark) != 0;
    }
    void Mark(Yr::UInt32 block, unsigned char mark) {
        if (block < m_marks.size()) m_marks[block] |= mark;
    }

private:
    ::IO::Location m_location;
    int m_descriptor = -1;
    Yr::UInt64 m_size = 0;
    std::vector<unsigned char> m_marks;
};

BlockFileScanner::BlockFileScanner(const ::IO::Location& location) {
    Walk walk(location);
    m_fileSize = walk.GetSize();
    ReadHeader(walk);
    if (!CheckHeader()) return;
    m_walkedLists = true;
    const Yr::UInt64 blocksInFile = m_fileSize / m_header.blockSize;
    walk.TrackBlocks(
        static_cast<Yr::UInt32>(std::min<Yr::UInt64>(m_header.blockCount, blocksInFile)));
    WalkFreeList(walk);
    WalkMasterList(walk);
}

void BlockFileScanner::ReadHeader(Walk& walk) {
    if (m_fileSize < Format::kHeaderSize) {
        Report(FaultKind::HeaderTruncated, 0,
               UniString::Printf("header: the file is %llu bytes long, too short for the %lu-byte "
                                 "header",
                                 m_fileSize, Format::kHeaderSize));
        return;
    }
    unsigned char bytes[Format::kHeaderSize];
    walk.Read(0, bytes, sizeof bytes);
    m_header.magic = Format::ReadField(bytes, Format::kMagicOffset);
    m_header.majorVersion = Format::ReadField(bytes, Format::kMajorVersionOffset);
    m_header.minorVersion = Format::ReadField(bytes, Format::kMinorVersionOffset);
    m_header.blockCount = Format::ReadField(bytes, Format::kBlockCountOffset);
    m_header.blockSize = Format::ReadField(bytes, Format::kBlockSizeOffset);
    m_header.masterListHead = Format::ReadField(bytes, Format::kMasterListHeadOffset);
    m_header.freeListHead = Format::ReadField(bytes, Format::kFreeListHeadOffset);
    m_header.freeBlockCount = Format::ReadField(bytes, Format::kFreeBlockCountOffset);
    m_hasHeader = true;
}

// False when the lists cannot be walked: not a block file, or no block size
// to find the blocks by.
bool BlockFileScanner::CheckHeader() {
    if (!m_hasHeader) return false;
    const Header& header = m_header;
    if (header.magic != Format::kMagic) {
        Report(
            FaultKind::WrongMagic, 0,
            UniString::Printf("header: the magic is %08lx, not 46427259 (\"YrBF\")", header.magic));
        return false;
    }
    if (header.majorVersion != Format::kMajorVersion ||
        header.minorVersion != Format::kMinorVersion) {
        Report(FaultKind::UnsupportedVersion, 0,
               UniString::Printf("header: version %lu.%lu, only 1.0 is known", header.majorVersion,
                                 header.minorVersion));
        return false;
    }
    if (header.blockSize < kMinBlockSize || header.blockSize > kMaxBlockSize) {
        Report(FaultKind::InvalidBlockSize, 0,
               UniString::Printf("header: block size %lu is outside %lu to %lu", header.blockSize,
                                 kMinBlockSize, kMaxBlockSize));
        return false;
    }
    const Yr::UInt64 logicalSize = Yr::UInt64(header.blockCount) * header.blockSize;
    if (logicalSize > m_fileSize)
        Report(FaultKind::BlockCountBeyondFile, 0,
               UniString::Printf("header: %lu blocks of %lu bytes need %llu bytes, the file has "
                                 "%llu",
                                 header.blockCount, header.blockSize, logicalSize, m_fileSize));
    if (logicalSize > kFourGiB)
        Report(FaultKind::BlockCountBeyondFourGiB, 0,
               UniString::Printf("header: %lu blocks of %lu bytes reach past 4 GiB, where block "
                                 "offsets wrap",
                                 header.blockCount, header.blockSize));
    if (header.freeBlockCount >= header.blockCount)
        Report(FaultKind::FreeCountTooLarge, 0,
               UniString::Printf("header: free block count %lu is not below the block count %lu",
                                 header.freeBlockCount, header.blockCount));
    return true;
}

void BlockFileScanner::WalkFreeList(Walk& walk) {
    Yr::UInt32 from = 0;
    for (Yr::UInt32 block = m_header.freeListHead; block != 0;) {
        if (!CanStep(walk, List::Free, from, block)) return;
        if (walk.Has(block, kFree)) {
            Report(FaultKind::FreeListCycle, block,
                   UniString::Printf("free list: %T points back to block %lu, a cycle",
                                     Referrer(from), block));
            return;
        }
        walk.Mark(block, kFree);
        ++m_freeListLength;
        unsigned char next[4];
        walk.Read(Yr::UInt64(block) * m_header.blockSize + Format::kNextFreeOffset, next, 4);
        from = block;
        block = Format::ReadField(next, 0);
    }
    // Only a whole list says what the count should be.
    if (m_freeListLength != m_header.freeBlockCount)
        Report(FaultKind::FreeCountMismatch, 0,
               UniString::Printf("free list: holds %lu blocks, the header counts %lu",
                                 m_freeListLength, m_header.freeBlockCount));
}

bool BlockFileScanner::CanStep(const Walk& walk, List list, Yr::UInt32 from, Yr::UInt32 block) {
    const bool free = list == List::Free;
    const char* const name = free ? "free list" : "master list";
    if (block >= m_header.blockCount) {
        Report(free ? FaultKind::FreeBlockOutOfRange : FaultKind::ListBlockOutOfRange, block,
               UniString::Printf("%s: %T points to block %lu, past the block count %lu", name,
                                 Referrer(from), block, m_header.blockCount));
        return false;
    }
    if (block >= walk.GetTrackedBlocks()) {
        Report(free ? FaultKind::FreeBlockPastEndOfFile : FaultKind::ListBlockPastEndOfFile, block,
               UniString::Printf("%s: %T points to block %lu, past the end of the file", name,
                                 Referrer(from), block));
        return false;
    }
    return true;
}

void BlockFileScanner::WalkMasterList(Walk& walk) {
    const Yr::UInt32 capacity = Format::MasterListCapacity(m_header.blockSize);
    Yr::UInt32 from = 0;
    for (Yr::UInt32 block = m_header.masterListHead; block != 0;) {
        if (!CanStep(walk, List::Master, from, block)) break;
        if (walk.Has(block, kListBlock)) {
            Report(FaultKind::MasterListCycle, block,
                   UniString::Printf("master list: %T points back to block %lu, a cycle",
                                     Referrer(from), block));
            break;
        }
        // A freed list block's first field leads into the free list.
        if (walk.Has(block, kFree)) {
            Report(FaultKind::ListBlockFree, block,
                   UniString::Printf("master list: block %lu is also on the free list", block));
            break;
        }
        walk.Mark(block, kListBlock);
        m_masterListBlocks.push_back(block);
        const Yr::UInt64 offset = Yr::UInt64(block) * m_header.blockSize;
        unsigned char fields[Format::kFirstEntryOffset];
        walk.Read(offset, fields, sizeof fields);
        const Yr::UInt32 count = Format::ReadField(fields, Format::kEntryCountOffset);
        // A count that cannot be right leaves no telling which entries are.
        if (count > capacity)
            Report(FaultKind::EntryCountOverCapacity, block,
                   UniString::Printf("master list: block %lu counts %lu entries, only %lu fit; "
                                     "its entries are left unchecked",
                                     block, count, capacity));
        else
            ReadMasterEntries(walk, block, count);
        from = block;
        block = Format::ReadField(fields, Format::kNextListBlockOffset);
    }
    // Only now are all list blocks known.
    for (const Yr::UInt32 master : m_masterBlocks)
        if (walk.Has(master, kListBlock))
            Report(FaultKind::MasterBlockIsListBlock, master,
                   UniString::Printf("master list: master block %lu is also a master-list block",
                                     master));
}

void BlockFileScanner::ReadMasterEntries(Walk& walk, Yr::UInt32 listBlock, Yr::UInt32 count) {
    if (count == 0) return;
    std::vector<unsigned char> entries(Yr::UInt64(count) * 4);
    walk.Read(Yr::UInt64(listBlock) * m_header.blockSize + Format::kFirstEntryOffset,
              entries.data(), count * 4);
    for (Yr::UInt32 index = 0; index < count; ++index)
        CheckMasterEntry(walk, listBlock, index, Format::ReadField(entries.data(), index * 4));
}

void BlockFileScanner::CheckMasterEntry(Walk& walk, Yr::UInt32 listBlock, Yr::UInt32 index,
                                        Yr::UInt32 entry) {
    if (entry == 0 || entry >= m_header.blockCount) {
        Report(FaultKind::MasterEntryOutOfRange, entry,
               UniString::Printf("master list: block %lu entry %lu names block %lu, %s", listBlock,
                                 index, entry, entry == 0 ? "the header" : "past the block count"));
        return;
    }
    if (walk.Has(entry, kMaster)) {
        Report(FaultKind::MasterBlockListedTwice, entry,
               UniString::Printf("master list: master block %lu is listed twice", entry));
        return;
    }
    if (walk.Has(entry, kFree))
        Report(FaultKind::MasterBlockFree, entry,
               UniString::Printf("master list: master block %lu is also on the free list", entry));
    walk.Mark(entry, kMaster);
    m_masterBlocks.push_back(entry);
}

void BlockFileScanner::Report(FaultKind kind, Yr::UInt32 block, const UniString& text) {
    m_faults.push_back(Fault{kind, block, text});
}

}  // namespace Morvelan::Common::Containers
