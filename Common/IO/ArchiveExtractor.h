#pragma once

#include <string>
#include <unordered_set>

#include "Common/IO/ArchiveEntry.h"
#include "InputOutput/Location.h"
#include "Yr/IBinaryChannel.h"

namespace Morvelan::Common::IO {

// Writes archive entries as files under one folder, safely for archives from
// strangers: a name that would lead outside the folder (a ".." component,
// an absolute path, a path through a symbolic link) is refused with
// ArchiveException before anything is written for it. Names are taken as
// the archive format has them: a leading slash is dropped and backslashes
// are slashes.
class ArchiveExtractor {
public:
    static constexpr Yr::UInt32 kFileBufferSize = 262144;
    static constexpr Yr::UInt32 kCopyPieceSize = 65536;

    // Checks the folder's location and creates it if it is missing.
    explicit ArchiveExtractor(const ::IO::Location& folder);

    // Copies `data` (the entry's uncompressed bytes) into the entry's file,
    // creating its parent folders; returns the file's location.
    ::IO::Location Extract(const ArchiveEntry& entry, Yr::IBinaryChannel& data);

    // Where the entry named so goes; refuses names leading outside.
    ::IO::Location GetTargetLocation(const Yr::UniString& entryName);

private:
    void CheckNoSymbolicLinks(const ::IO::Location& target);

    ::IO::Location m_folder;
    // Folders below m_folder already known to be real folders, not links.
    std::unordered_set<std::string> m_checkedFolders;
};

}  // namespace Morvelan::Common::IO
