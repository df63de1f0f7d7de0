#include "Common/IO/QlzStreamHeader.h"

#include "Yr/BinProtocolX.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/QlzIBinaryChannel";

Yr::UInt32 ReadNumber(Yr::IBinaryChannel& channel) {
    unsigned int value = 0;
    Yr::GetBinIProtocolX().Read(channel, value);
    return value;
}

}  // namespace

void QlzStreamHeader::Write(Yr::OBinaryChannel& channel) const {
    const Yr::OProtocolX& protocol = Yr::GetBinOProtocolX();
    for (const Yr::UInt32 field : {kMagic, packetSize, kMajorVersion, kMinorVersion})
        protocol.Write(channel, static_cast<unsigned int>(field));
}

QlzStreamHeader QlzStreamHeader::Read(Yr::IBinaryChannel& channel, Yr::UInt32 maxPacketSize) {
    if (ReadNumber(channel) != kMagic)
        throw Yr::IOException("Failed to read QuickLZ stream header: invalid header magic.",
                              kSourceUnit, __LINE__, Yr::kIOErrorCode);
    QlzStreamHeader header;
    header.packetSize = ReadNumber(channel);
    const Yr::UInt32 major = ReadNumber(channel);
    const Yr::UInt32 minor = ReadNumber(channel);
    if (major != kMajorVersion || minor != kMinorVersion)
        throw Yr::IOException(
            Yr::UniString::Printf(
                "Invalid QuickLZ binary stream header: unsupported stream version: %u.%u.", major,
                minor),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    // Buffers of this size are allocated next: a damaged header must not
    // make that unbounded.
    if (header.packetSize == 0 || header.packetSize > maxPacketSize)
        throw Yr::IOException(
            Yr::UniString::Printf("Invalid QuickLZ binary stream header: invalid packet size: %u.",
                                  header.packetSize),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    return header;
}

}  // namespace Morvelan::Common::IO
