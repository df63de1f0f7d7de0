#pragma once

#include "Common/Containers/BlockFileHandler.h"

namespace Morvelan::Common::Containers {

// The block file handler over a POSIX descriptor, through the file-system
// seam: an exclusive advisory lock keeps a second opener out, positioned
// reads and writes share no file pointer, Flush is fsync.
class PosixBlockFileHandler final : public BlockFileHandler {
public:
    explicit PosixBlockFileHandler(const ::IO::Location& location);
    ~PosixBlockFileHandler() override;

    Yr::UInt64 GetSize() override { return m_size; }
    void SetSize(Yr::UInt64 size) override;
    void Write(Yr::UInt64 offset, const void* buffer, Yr::UInt32 size) override;
    void Read(Yr::UInt64 offset, void* buffer, Yr::UInt32 size) override;
    void Flush() override;
    bool IsClosed() override { return m_descriptor < 0; }
    void Close() override;

private:
    int m_descriptor = -1;
    Yr::UInt64 m_size = 0;
};

}  // namespace Morvelan::Common::Containers
