#pragma once

#include "Yr/FilterIBinaryChannel.h"
#include "Yr/MemoryBlock.h"

namespace Yr {

// Reads the inner channel in blocks of `bufferSize` bytes, so that many small
// reads cost few inner reads. A read of a whole buffer or more while nothing
// is buffered goes straight into the caller's buffer. Close drops what is
// buffered and closes the inner channel; later calls throw IOException.
// Destruction leaves the inner channel open. The plain-reference form
// borrows the inner channel: the caller keeps it alive.
class BufferedIBinaryChannel final : public FilterIBinaryChannel {
public:
    // A bufferSize of 0 throws IllegalArgumentException; an empty Ref too.
    BufferedIBinaryChannel(const Ref<IBinaryChannel>& inner, UInt32 bufferSize);
    BufferedIBinaryChannel(IBinaryChannel& inner, UInt32 bufferSize);
    ~BufferedIBinaryChannel() override;

    using FilterIBinaryChannel::Read;
    UInt32 Read(char* buffer, UInt32 size, ReadSomeModeSelector) override;
    // The bytes buffered plus the inner channel's.
    UInt64 GetAvailable() const override;
    void Close() override;

private:
    void CheckOpened(UInt32 line) const;

    UInt32 m_bufferSize;
    MemoryBlock m_buffer;   // m_bufferSize bytes
    UInt32 m_position = 0;  // next buffered byte to hand out
    UInt32 m_end = 0;       // end of the buffered bytes
    bool m_closed = false;
};

}  // namespace Yr
