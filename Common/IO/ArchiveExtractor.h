#pragma once

#include <string>
#include <unordered_set>

#include "Common/IO/ArchiveEntry.h"
#include "InputOutput/Location.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {

// Writes archive entries as files under one folder, safely for archives from
// strangers: a name that would lead outside the folder (a ".." component,
// an absolute path, a path through a symbolic link) is refused with
// ArchiveException before anything is written for it. Names are taken as
// the archive format has them: a leading slash is dropped and backslashes
// are slashes.
class ArchiveExtractor {
public:
    static constexpr Yr::UInt32 kCopyPieceSize = 262144;

    // Checks the folder's location and creates it if it is missing.
    explicit ArchiveExtractor(const ::IO::Location& folder);

    // Where an entry's file goes, and whether something was there before.
    struct Target {
        ::IO::Location location;
        bool existed = false;
    };

    // Copies `data` (the entry's uncompressed bytes) into the entry's file;
    // Prepare then Write.
    ::IO::Location Extract(const ArchiveEntry& entry, Yr::IBinaryChannel& data);

    // Applies the naming rules, refuses names leading outside, and creates
    // the parent folders.
    Target Prepare(const Yr::UniString& entryName);
    void Write(const Target& target, Yr::IBinaryChannel& data);

private:
    // Whether the target exists; throws when it or a folder on the way is a link.
    bool CheckNoSymbolicLinks(const ::IO::Location& target);

    ::IO::Location m_folder;
    // Folders below m_folder already known to be real folders, not links.
    std::unordered_set<std::string> m_checkedFolders;
    Yr::MemoryBlock m_piece;
};

}  // namespace Morvelan::Common::IO
