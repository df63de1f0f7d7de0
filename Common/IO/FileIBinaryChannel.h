#pragma once

#include "Common/IO/FileShare.h"
#include "InputOutput/Location.h"
#include "Yr/IBinaryChannel.h"

namespace Morvelan::Common::IO {

// Reads a whole file from its start. The share says what others may do
// meanwhile; on Linux it becomes an advisory lock: None an exclusive one,
// Read a shared one, and the shares that let others write none at all.
// Failures are the file-system exceptions of IOUtilities.
class FileIBinaryChannel final : public Yr::IBinaryChannel {
public:
    FileIBinaryChannel(const ::IO::Location& location, FileShare share);
    ~FileIBinaryChannel() override;

    using Yr::IBinaryChannel::Read;
    // Returns 0 only at the end of the file.
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    // The bytes from the current position to the end of the file.
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

private:
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;

    ::IO::Location m_location;
    int m_descriptor = -1;
    bool m_opened = false;
};

}  // namespace Morvelan::Common::IO
