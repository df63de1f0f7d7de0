#pragma once

#include "Common/IO/PagedBuffer.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {

// Appends every write to a paged buffer. Close only marks the channel
// closed: the bytes stay for the owner, who copies them out through
// GetBuffer(). Used by the deferred-file channel while its output is small.
class PagedBufferOBinaryChannel final : public Yr::OBinaryChannel {
public:
    PagedBufferOBinaryChannel();
    ~PagedBufferOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    // Nothing to pass on: only checks the channel is open.
    void Flush() override;
    void Close() override;

    const PagedBuffer& GetBuffer() const { return m_buffer; }

private:
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;

    PagedBuffer m_buffer;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
