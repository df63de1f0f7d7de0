#pragma once

#include <vector>

#include "InputOutput/Location.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::Containers {

// Reads a block file without changing it: no write access, no lock, so a
// damaged file or one a block file holds open can be looked at as it is.
// The header is read, then the free list and the master list are walked;
// what is wrong with them comes back as a list of faults, not as
// exceptions, so all of it can be shown at once. Every walk is bounded: a
// block is visited at most once, a list block's entries at most to its
// capacity, and nothing past the end of the file is read.
class BlockFileScanner final {
public:
    // A header that leaves nothing sound to walk stops the scan (the first
    // four kinds); the walk of a list stops at the first fault that leaves no
    // next block to go on with; the other faults are only noted.
    enum class FaultKind {
        HeaderTruncated,
        WrongMagic,
        UnsupportedVersion,
        InvalidBlockSize,
        BlockCountBeyondFile,
        BlockCountBeyondFourGiB,
        FreeCountTooLarge,
        FreeBlockOutOfRange,
        FreeBlockPastEndOfFile,
        FreeListCycle,
        FreeCountMismatch,
        ListBlockOutOfRange,
        ListBlockPastEndOfFile,
        ListBlockFree,
        MasterListCycle,
        EntryCountOverCapacity,
        MasterEntryOutOfRange,
        MasterBlockFree,
        MasterBlockIsListBlock,
        MasterBlockListedTwice,
    };

    struct Fault {
        FaultKind kind;
        // The block the fault is about; 0 for the header's own fields.
        Yr::UInt32 block;
        // One line for a user: where in the file and what is wrong.
        Yr::UniString text;
    };

    // The header's fields as they are in the file.
    struct Header {
        Yr::UInt32 magic = 0;
        Yr::UInt32 majorVersion = 0;
        Yr::UInt32 minorVersion = 0;
        Yr::UInt32 blockCount = 0;
        Yr::UInt32 blockSize = 0;
        Yr::UInt32 masterListHead = 0;
        Yr::UInt32 freeListHead = 0;
        Yr::UInt32 freeBlockCount = 0;
    };

    // Block sizes outside these bounds are taken as damage: below, the
    // header does not fit into block 0; above, no block file we write has
    // them, and reading one would cost more memory than the file is worth.
    static constexpr Yr::UInt32 kMinBlockSize = 36;
    static constexpr Yr::UInt32 kMaxBlockSize = 16 << 20;

    // Scans the file at once. A file that is missing or cannot be read
    // throws the file-system exception of its failure (code -7003).
    explicit BlockFileScanner(const ::IO::Location& location);

    Yr::UInt64 GetFileSize() const { return m_fileSize; }
    // False when the file is shorter than a header; the fields are then 0.
    bool HasHeader() const { return m_hasHeader; }
    const Header& GetHeader() const { return m_header; }
    // False when the header stopped the scan before the lists.
    bool HasWalkedLists() const { return m_walkedLists; }
    // Distinct blocks reached on the free list before it ended or broke off.
    Yr::UInt32 GetFreeListLength() const { return m_freeListLength; }
    // The master-list blocks in list order.
    const std::vector<Yr::UInt32>& GetMasterListBlocks() const { return m_masterListBlocks; }
    // The master blocks the list names, in list order: every entry that
    // names a client block, once.
    const std::vector<Yr::UInt32>& GetMasterBlocks() const { return m_masterBlocks; }
    const std::vector<Fault>& GetFaults() const { return m_faults; }
    bool IsClean() const { return m_faults.empty(); }

private:
    class Walk;
    enum class List { Free, Master };

    void ReadHeader(Walk& walk);
    bool CheckHeader();
    void WalkFreeList(Walk& walk);
    void WalkMasterList(Walk& walk);
    // Whether a list may go on to `block`, which `from` (0: the header) points to.
    bool CanStep(const Walk& walk, List list, Yr::UInt32 from, Yr::UInt32 block);
    void ReadMasterEntries(Walk& walk, Yr::UInt32 listBlock, Yr::UInt32 count);
    void CheckMasterEntry(Walk& walk, Yr::UInt32 listBlock, Yr::UInt32 index, Yr::UInt32 entry);
    void Report(FaultKind kind, Yr::UInt32 block, const Yr::UniString& text);

    Yr::UInt64 m_fileSize = 0;
    bool m_hasHeader = false;
    Header m_header;
    bool m_walkedLists = false;
    Yr::UInt32 m_freeListLength = 0;
    std::vector<Yr::UInt32> m_masterListBlocks;
    std::vector<Yr::UInt32> m_masterBlocks;
    std::vector<Fault> m_faults;
};

}  // namespace Morvelan::Common::Containers
