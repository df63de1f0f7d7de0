#pragma once

#include <memory>

#include "Yr/FilterOBinaryChannel.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {

class QuickLZCompressor;

// Compresses what is written to it into a QuickLZ packet stream on the inner
// channel: a header, then packets of at most the packet size, each its
// compressed length and one QuickLZ block (level 1, 1,000,000 bytes of
// history, so later packets refer to earlier ones). An empty stream is a
// header alone. Close() finishes the stream and closes the inner channel;
// destruction does neither. Used by one thread at a time.
class QlzOBinaryChannel final : public Yr::FilterOBinaryChannel {
public:
    static constexpr Yr::UInt32 DefaultPacketSize = 131072;
    static constexpr Yr::UInt32 MinimumPacketSize = 8192;
    // Readers refuse larger packets, so that a damaged header cannot make
    // them allocate without bound.
    static constexpr Yr::UInt32 MaximumPacketSize = 64u << 20;

    QlzOBinaryChannel(Yr::OBinaryChannel& inner, Yr::UInt32 packetSize);
    QlzOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner, Yr::UInt32 packetSize);
    ~QlzOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    // Sends the packet collected so far, short as it is, and flushes the
    // inner channel, so a reader can decode everything written.
    void Flush() override;
    // Sends the last packet; the stream is then complete. Writing more
    // starts further packets.
    void Finish();
    bool IsFinished() const { return m_finished; }
    void Close() override;

private:
    void Initialize(Yr::UInt32 packetSize);
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    void WriteHeaderOnce();
    void WritePacket();
    void WritePacket(const char* data, Yr::UInt32 size);

    Yr::UInt32 m_packetSize = 0;
    Yr::MemoryBlock m_packet;
    Yr::UInt32 m_packetFill = 0;
    Yr::MemoryBlock m_block;
    std::unique_ptr<QuickLZCompressor> m_compressor;
    bool m_headerWritten = false;
    bool m_finished = false;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
