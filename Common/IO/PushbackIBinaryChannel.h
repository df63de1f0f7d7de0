#pragma once

#include "Yr/DataBuffer.h"
#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Common::IO {

// Lets a reader hand bytes back (Unread); they are read again before any
// further inner data. The buffer is either fixed (Unread beyond its room
// throws) or growable. Close() closes the inner channel once; Read and
// Unread go on working afterwards, on the buffer and the closed inner
// channel. A borrowed inner channel must outlive the filter; a shared one is
// kept alive by it. The channel operations are private: use them through
// Yr::IBinaryChannel.
class PushbackIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    // Growable buffer, initially empty.
    explicit PushbackIBinaryChannel(Yr::IBinaryChannel& inner);
    explicit PushbackIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    // Fixed buffer of `size` bytes, which must not be 0.
    PushbackIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt32 size);
    PushbackIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner, Yr::UInt32 size);
    ~PushbackIBinaryChannel() override;

    // Normally the bytes come back before those unread earlier. When a
    // growable buffer lacks room in front, they are added behind the bytes
    // still pending and so come back after them.
    void Unread(const char* data, Yr::UInt32 size);

private:
    using Yr::FilterIBinaryChannel::Read;
    // May combine pushed-back and fresh bytes in one call.
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

    // Kept for the channel family's shape; nothing here rejects use after Close.
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    Yr::UInt32 GetPendingCount() const;

    // Pending bytes run from here to the end of the buffer.
    Yr::UInt32 m_readIndex;
    Yr::DataBuffer<unsigned char> m_buffer;
    bool m_growable;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
