#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Common/IO/ArchiveEntry.h"
#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Yr/BufferedIBinaryChannel.h"

namespace Morvelan::Tool {

// Reads an archive named on the command line ("-": standard input) entry
// by entry, front to back, so a pipe does as well as a file. A failure
// while an entry is current names the entry: "entry 'NAME': ...".
class ArchiveReader final {
public:
    // Takes the entry while it is current; false stops the reading.
    using Visitor = std::function<bool(const Common::IO::ArchiveEntry& entry)>;

    explicit ArchiveReader(const std::string& argument);

    // Calls `visit` for each entry in turn, then leaves the entry, which
    // checks it against its trailer. A visitor that needs the sizes or CRC
    // calls Leave itself first.
    void ForEach(const Visitor& visit);
    // The current entry's uncompressed data.
    Yr::IBinaryChannel& GetData() { return m_archive; }
    void Leave() { m_archive.CloseEntry(); }
    Common::IO::ArchiveIBinaryChannel& GetArchive() { return m_archive; }

private:
    // `previous` names the entry before, for the message when the file ends early.
    Yr::Ref<Common::IO::ArchiveEntry> NextEntry(const Yr::UniString& previous);

    std::unique_ptr<Yr::IBinaryChannel> m_input;
    Yr::BufferedIBinaryChannel m_buffered;
    Common::IO::ArchiveIBinaryChannel m_archive;
};

}  // namespace Morvelan::Tool
