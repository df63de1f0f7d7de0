#pragma once

#include "Common/IO/PagedBuffer.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Lets the writer move back and overwrite bytes not yet passed on. Bytes from
// the flush position up to the end are held in memory; Flush and Close pass
// those before the current position to the inner channel and keep the rest,
// so bytes written beyond the position at Close are dropped: seek to the end
// first. A borrowed inner channel must outlive the filter; a shared one is
// kept alive by it. Close() closes the inner channel; destruction does not.
class SeekableOBinaryChannel final : public Yr::OBinaryChannel {
public:
    explicit SeekableOBinaryChannel(Yr::OBinaryChannel& inner);
    // An empty `inner` throws "Invalid output channel: channel is null.".
    explicit SeekableOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner);
    ~SeekableOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    // Passes the bytes before the position on; does not flush the inner channel.
    void Flush() override;
    void Close() override;

    // Not below the flush position; beyond the end the gap reads as zeros.
    void Seek(Yr::UInt64 position);
    Yr::UInt64 GetPosition() const;
    Yr::UInt64 GetEndPosition() const;
    Yr::UInt64 GetFlushPosition() const;

private:
    void FlushImpl();
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;

    Yr::Ref<Yr::OBinaryChannel> m_innerRef;  // empty when borrowed
    Yr::OBinaryChannel& m_inner;
    Yr::UInt64 m_flushPosition = 0;
    Yr::UInt64 m_endPosition = 0;
    Yr::UInt64 m_position = 0;
    PagedBuffer m_buffer;  // offset 0 is the flush position
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
