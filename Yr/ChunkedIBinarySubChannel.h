#pragma once

#include "Yr/IBinaryChannel.h"

namespace Yr {

class IProtocolX;

// Reads a sub-stream framed by ChunkedOBinarySubChannel: chunks of a
// protocol int length and that many bytes, up to the end mark, an int 0.
// Reads go straight into the caller's buffer, at most to the end of the
// current chunk. From the end mark on Read returns 0; the underlying channel
// then stands just behind the sub-stream.
//
// A negative length throws IOException; a stream that ends inside a length
// or a chunk throws EndOfInputException. Close only marks this channel
// closed (later calls throw IOException); the underlying channel stays open.
// Borrows the channel and the protocol; the caller keeps both alive.
class ChunkedIBinarySubChannel final : public IBinaryChannel {
public:
    ChunkedIBinarySubChannel(IBinaryChannel& channel, const IProtocolX& protocol);

    using IBinaryChannel::Read;
    UInt32 Read(char* buffer, UInt32 size, ReadSomeModeSelector) override;
    // The smaller of the bytes left in the current chunk and the channel's.
    UInt64 GetAvailable() const override;
    void Close() override { m_closed = true; }

private:
    void CheckOpened(UInt32 line) const;

    IBinaryChannel& m_channel;
    const IProtocolX& m_protocol;
    UInt32 m_left = 0;  // bytes of the current chunk not yet read
    bool m_ended = false;
    bool m_closed = false;
};

}  // namespace Yr
