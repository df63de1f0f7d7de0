#include "Common/IO/JavaDataOutputProtocol.h"

#include <bit>

#include "Common/IO/BigEndian.h"
#include "Common/IO/JavaDataOutputProtocolUtils.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Guid.h"
#include "Yr/OChannel.h"
#include "Yr/YrException.h"

namespace Morvelan::Common::IO {
namespace {

template <class Bits>
Yr::YrErrCode WriteBits(Yr::OChannel& channel, Bits bits) {
    char bytes[sizeof(Bits)];
    BigEndian::Store(bytes, bits);
    return channel.Write(bytes, sizeof bytes);
}

}  // namespace

JavaDataOutputProtocol& JavaDataOutputProtocol::GetInstance() {
    static JavaDataOutputProtocol instance;
    return instance;
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, char value) {
    return WriteBits(channel, static_cast<Yr::UInt8>(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, bool value) {
    return WriteBits(channel, static_cast<Yr::UInt8>(value ? 1 : 0));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, short value) {
    return WriteBits(channel, static_cast<Yr::UInt16>(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, unsigned short value) {
    return WriteBits(channel, static_cast<Yr::UInt16>(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, int value) {
    return WriteBits(channel, static_cast<Yr::UInt32>(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, Yr::Int64 value) {
    return WriteBits(channel, static_cast<Yr::UInt64>(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, float value) {
    return WriteBits(channel, BigEndian::CanonicalBits(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, double value) {
    return WriteBits(channel, BigEndian::CanonicalBits(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, long double value) {
    return Write(channel, static_cast<double>(value));
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, const Yr::Guid& value) {
    char fields[8];
    BigEndian::Store(fields, value.data1);
    BigEndian::Store(fields + 4, value.data2);
    BigEndian::Store(fields + 6, value.data3);
    if (const Yr::YrErrCode status = channel.Write(fields, sizeof fields)) return status;
    return channel.Write(reinterpret_cast<const char*>(value.data4), sizeof value.data4);
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, const char* text) {
    try {
        return WriteUTF(channel, Yr::UniString(text));
    } catch (const Yr::YrException&) {
        return Yr::kWriteErrorCode;
    }
}

Yr::YrErrCode JavaDataOutputProtocol::Write(Yr::OChannel& channel, const Yr::UniString& text) {
    return WriteUTF(channel, text);
}

}  // namespace Morvelan::Common::IO
