#include "Yr/OProtocolX.h"

#include "Yr/Guid.h"
#include "Yr/OBinaryChannel.h"

namespace Yr {

void OProtocolX::Write(OBinaryChannel& channel, const Guid& value) const {
    Write(channel, static_cast<int>(value.data1));
    Write(channel, value.data2);
    Write(channel, value.data3);
    channel.Write(reinterpret_cast<const char*>(value.data4), sizeof value.data4);
}

void OProtocolX::Write(OBinaryChannel& channel, unsigned char value) const {
    Write(channel, static_cast<char>(value));
}

void OProtocolX::Write(OBinaryChannel& channel, unsigned int value) const {
    Write(channel, static_cast<int>(value));
}

void OProtocolX::Write(OBinaryChannel& channel, UInt64 value) const {
    Write(channel, static_cast<Int64>(value));
}

}  // namespace Yr
