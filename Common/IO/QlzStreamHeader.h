#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {

// The header at the start of a QuickLZ packet stream: magic ("CZLQ" in its
// little-endian bytes), the writer's packet size, and the stream version.
// Every field is an unsigned 32-bit number in the base layer's binary
// protocol.
struct QlzStreamHeader {
    static constexpr Yr::UInt32 kMagic = 0x514C5A43;
    static constexpr Yr::UInt32 kMajorVersion = 1;
    static constexpr Yr::UInt32 kMinorVersion = 0;

    Yr::UInt32 packetSize = 0;

    void Write(Yr::OBinaryChannel& channel) const;
    // Refuses another magic, another version and packet sizes beyond
    // `maxPacketSize` with Yr::IOException.
    static QlzStreamHeader Read(Yr::IBinaryChannel& channel, Yr::UInt32 maxPacketSize);
};

}  // namespace Morvelan::Common::IO
