#pragma once

#include <memory>

#include "Yr/FilterIBinaryChannel.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {

class QuickLZDecompressor;

// The state behind QlzIBinaryChannel: the header, once read, and one packet
// compressed and decompressed.
class QlzIBinaryChannelImpl final : public Yr::FilterIBinaryChannel {
public:
    explicit QlzIBinaryChannelImpl(Yr::IBinaryChannel& inner);
    explicit QlzIBinaryChannelImpl(const Yr::Ref<Yr::IBinaryChannel>& inner);
    ~QlzIBinaryChannelImpl() override;

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

private:
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    void ReadHeader();
    // Reads the next packet's block; its length, or 0 where the inner
    // stream ends.
    Yr::UInt32 ReadPacket();
    // Whether the block read decompresses into `size` bytes.
    bool FitsWhole(Yr::UInt32 length, Yr::UInt32 size) const;

    Yr::UInt32 m_packetSize = 0;
    Yr::MemoryBlock m_compressed;
    Yr::MemoryBlock m_decompressed;  // only for reads smaller than a packet
    Yr::UInt32 m_position = 0;
    Yr::UInt32 m_fill = 0;
    std::unique_ptr<QuickLZDecompressor> m_decompressor;
    bool m_headerRead = false;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
