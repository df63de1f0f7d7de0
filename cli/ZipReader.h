#pragma once

#include <functional>
#include <string>

#include "Common/IO/ZipEntry.h"
#include "Common/IO/ZipIBinaryChannel.h"
#include "cli/MonitoredInput.h"

namespace Morvelan::Tool {

// Reads a zip file named on the command line ("-": standard input) entry by
// entry, front to back, so a pipe does as well as a file; the central
// directory is checked at the end. A failure while an entry is current
// names the entry: "entry 'NAME': ...".
class ZipReader final {
public:
    // Takes the entry while it is current; false stops the reading.
    using Visitor = std::function<bool(const Common::IO::ZipEntry& entry)>;

    // With a `monitor`, reading reports the zip file's bytes and can be canceled.
    explicit ZipReader(const std::string& argument, Common::ProgressMonitor* monitor = nullptr);

    Yr::UInt64 GetSizeIfKnown() const { return m_input.GetSizeIfKnown(); }
    // Calls `visit` for each entry, then leaves it, which checks its size
    // and CRC-32. A visitor that needs them calls Leave itself first.
    void ForEach(const Visitor& visit);
    // The current entry's uncompressed data.
    Yr::IBinaryChannel& GetData() { return m_zip; }
    void Leave() { m_zip.CloseEntry(); }
    Yr::UniString GetComment() const { return m_zip.GetComment(); }

private:
    MonitoredInput m_input;
    Common::IO::ZipIBinaryChannel m_zip;
};

}  // namespace Morvelan::Tool
