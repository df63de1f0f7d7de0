#pragma once

#include "Yr/FilterOBinaryChannel.h"
#include "Yr/MemoryBlock.h"

namespace Yr {

// Collects small writes and hands them to the inner channel `bufferSize`
// bytes at a time. A write that does not fit what is left of the buffer sends
// the buffer on first; one of a whole buffer or more then goes straight to
// the inner channel. Close writes what is collected and closes the inner
// channel; later calls throw IOException.
//
// Destruction neither writes nor closes (a destructor must not throw): bytes
// still collected then are lost, so callers Flush or Close first. The
// plain-reference form borrows the inner channel: the caller keeps it alive.
class BufferedOBinaryChannel final : public FilterOBinaryChannel {
public:
    // A bufferSize of 0 throws IllegalArgumentException; an empty Ref too.
    BufferedOBinaryChannel(const Ref<OBinaryChannel>& inner, UInt32 bufferSize);
    BufferedOBinaryChannel(OBinaryChannel& inner, UInt32 bufferSize);
    ~BufferedOBinaryChannel() override;

    void Write(const char* buffer, UInt32 size) override;
    // Writes what is collected, then flushes the inner channel.
    void Flush() override;
    // Writes what is collected without flushing the inner channel, for
    // callers that end the inner stream themselves (a compressor's Finish).
    void Drain();
    void Close() override;

private:
    void CheckOpened(UInt32 line) const;
    void WriteCollected();

    UInt32 m_bufferSize;
    MemoryBlock m_buffer;  // m_bufferSize bytes
    UInt32 m_used = 0;
    bool m_closed = false;
};

}  // namespace Yr
