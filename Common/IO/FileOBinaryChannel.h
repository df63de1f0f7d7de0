#pragma once

#include <string>

#include "Common/IO/FileShare.h"
#include "InputOutput/Location.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {

// Writes a file, creating it when missing. Without `append` an existing
// file is truncated; with it writing continues at its end. Only exclusive
// output (share None) is supported; on Linux it holds an exclusive advisory
// lock while open. Every write goes to the file at once.
class FileOBinaryChannel final : public Yr::OBinaryChannel {
public:
    FileOBinaryChannel(const ::IO::Location& location, bool append, FileShare share);
    ~FileOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    // Only checks the channel is open: pushing data to disk is FlushToDisk's job.
    void Flush() override;
    void Close() override;

private:
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    void Open(const std::string& path, bool append);

    ::IO::Location m_location;
    int m_descriptor = -1;
    bool m_opened = false;
};

}  // namespace Morvelan::Common::IO
