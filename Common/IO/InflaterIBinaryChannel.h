#pragma once

#include "Common/IO/Inflater.h"
#include "Yr/FilterIBinaryChannel.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {

// Reads a raw (`nowrap`) or zlib-wrapped deflate stream from the inner
// channel, `bufferSize` compressed bytes at a time, and yields the
// decompressed bytes. The stream's end, or its need for a preset dictionary,
// reads as the end of input; what the inner channel ends before that throws.
// Bytes read past the stream's end stay in the inflater (GetRemainingInput).
// Close() closes the inner channel; destruction leaves it open. A borrowed
// inner channel must outlive the filter; a shared one is kept alive by it.
class InflaterIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    InflaterIBinaryChannel(Yr::IBinaryChannel& channel, Yr::UInt32 bufferSize, bool nowrap);
    InflaterIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& channel, Yr::UInt32 bufferSize,
                           bool nowrap);
    // Decompresses with the caller's inflater, which keeps any input and
    // dictionary it was given.
    InflaterIBinaryChannel(Yr::IBinaryChannel& channel, const Yr::Ref<Inflater>& inflater,
                           Yr::UInt32 bufferSize);
    InflaterIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& channel,
                           const Yr::Ref<Inflater>& inflater, Yr::UInt32 bufferSize);
    ~InflaterIBinaryChannel() override;

    using Yr::FilterIBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    // 1 while the inflater waits for input: at least one more byte may come.
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

    Yr::IBinaryChannel& GetInputChannel() const { return m_inner; }

private:
    void Initialize(const Yr::Ref<Inflater>& inflater, Yr::UInt32 bufferSize);
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    void FillBuffer();

    Yr::Ref<Inflater> m_inflater;
    Yr::MemoryBlock m_buffer;
    Yr::UInt32 m_bufferSize = 0;
    bool m_closed = false;
    bool m_endReached = false;
};

}  // namespace Morvelan::Common::IO
