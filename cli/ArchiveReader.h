#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Common/IO/ArchiveEntry.h"
#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Common/ProgressMonitor.h"
#include "cli/MonitoredInput.h"

namespace Morvelan::Tool {

// Reads an archive named on the command line ("-": standard input) entry
// by entry, front to back, so a pipe does as well as a file. A failure
// while an entry is current names the entry: "entry 'NAME': ...".
class ArchiveReader final {
public:
    // Takes the entry while it is current; false stops the reading.
    using Visitor = std::function<bool(const Common::IO::ArchiveEntry& entry)>;

    // With a `monitor`, the archive's bytes read so far are reported to it
    // as they come in, and its IsCanceled is asked before each read.
    explicit ArchiveReader(const std::string& argument, Common::ProgressMonitor* monitor = nullptr);

    // The archive's size when it is a file, read before anything else; 0
    // for a pipe.
    Yr::UInt64 GetSizeIfKnown() const { return m_input.GetSizeIfKnown(); }

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

    MonitoredInput m_input;
    Common::IO::ArchiveIBinaryChannel m_archive;
};

}  // namespace Morvelan::Tool
