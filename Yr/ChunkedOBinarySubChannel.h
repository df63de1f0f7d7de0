#pragma once

#include "Yr/MemoryBlock.h"

#include "Yr/OBinaryChannel.h"

namespace Yr {

class OProtocolX;

// Frames a sub-stream inside another stream as chunks, so that its reader
// finds its end without knowing its length beforehand. A chunk is its byte
// count as a protocol int (1 to 2^31-1) followed by that many bytes; an int
// 0 ends the sub-stream. Bytes are collected and sent as a chunk when
// `chunkSize` are together, on Flush and on Close; a write of a whole chunk
// or more while nothing is collected goes out without a copy.
//
// Close writes what is collected and the end mark but leaves the underlying
// channel open: the stream goes on after the sub-stream. Destruction writes
// nothing; a sub-stream not closed has no end mark. Borrows the channel and
// the protocol; the caller keeps both alive.
class ChunkedOBinarySubChannel final : public OBinaryChannel {
public:
    // A chunkSize of 0 or above 2^31-1 throws IllegalArgumentException.
    ChunkedOBinarySubChannel(OBinaryChannel& channel, const OProtocolX& protocol, UInt32 chunkSize);
    ~ChunkedOBinarySubChannel() override;

    void Write(const char* buffer, UInt32 size) override;
    // Sends the collected bytes as a (short) chunk, then flushes the channel.
    void Flush() override;
    // Idempotent; Write and Flush afterwards throw IOException.
    void Close() override;

private:
    void CheckOpened(UInt32 line) const;
    void WriteChunk(const char* data, UInt32 size);
    void WriteCollected();

    OBinaryChannel& m_channel;
    const OProtocolX& m_protocol;
    UInt32 m_chunkSize;
    MemoryBlock m_buffer;  // m_chunkSize bytes
    UInt32 m_used = 0;
    bool m_closed = false;
};

}  // namespace Yr
