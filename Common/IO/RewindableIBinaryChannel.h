#pragma once

#include <memory>

#include "Common/IO/PagedBuffer.h"
#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Common::IO {

// Keeps the bytes it has read so that the reader can move back (or forward
// again) to an earlier position and read them once more without asking the
// inner channel twice. The history is unbounded (paged) or the last
// `capacity` bytes (a ring). Close() closes the inner channel once, releases
// the history and makes later calls throw; destruction leaves the inner
// channel open. A borrowed inner channel must outlive the filter; a shared one
// is kept alive by it.
class RewindableIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    // Unbounded history: up to PagedBuffer::kMaximumSize bytes.
    explicit RewindableIBinaryChannel(Yr::IBinaryChannel& inner);
    explicit RewindableIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    // History of the last `capacity` bytes, which must not be 0.
    RewindableIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt32 capacity);
    RewindableIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner, Yr::UInt32 capacity);
    ~RewindableIBinaryChannel() override;

    Yr::UInt64 GetPosition() const;
    // Whether Rewind(position) would succeed.
    bool CanRewind(Yr::UInt64 position) const;
    // Any position up to the furthest read is allowed, forward ones too.
    void Rewind(Yr::UInt64 position);

    using Yr::FilterIBinaryChannel::Read;
    // Bytes rewound over are served from the history alone, never together
    // with fresh ones.
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

private:
    struct RingDeleter {
        void operator()(char* ring) const;
    };

    void Append(const char* data, Yr::UInt32 size);
    Yr::UInt32 Get(Yr::UInt64 position, char* buffer, Yr::UInt32 size) const;
    bool IsBound() const { return m_capacity > 0; }
    bool IsBuffered(Yr::UInt64 position) const;
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;

    Yr::UInt64 m_capacity = 0;  // 0: unbounded
    Yr::UInt64 m_total = 0;     // bytes taken from the inner channel
    Yr::UInt64 m_pending = 0;   // bytes rewound over and not read again
    // Unbounded history: byte i of the stream sits at offset i.
    PagedBuffer m_pages;
    // Bounded history: byte i of the stream sits at i modulo capacity.
    std::unique_ptr<char, RingDeleter> m_ring;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
