#include "Common/IO/JavaDataInputProtocol.h"

#include <bit>
#include <cstring>

#include "Common/IO/BigEndian.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataReading.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Guid.h"
#include "Yr/YrException.h"

namespace Morvelan::Common::IO {
namespace {

template <class Bits>
Yr::YrErrCode ReadBits(Yr::IChannel& channel, Bits& bits) {
    char bytes[sizeof(Bits)];
    if (const Yr::YrErrCode status = JavaDataReading::ReadExactly(channel, bytes, sizeof bytes))
        return status;
    bits = BigEndian::Load<Bits>(bytes);
    return 0;
}

// Reads the bits of a value of type T and hands them over converted.
template <class Bits, class T>
Yr::YrErrCode ReadAs(Yr::IChannel& channel, T& value) {
    Bits bits = 0;
    const Yr::YrErrCode status = ReadBits(channel, bits);
    if (status == 0) value = std::bit_cast<T>(bits);
    return status;
}

}  // namespace

JavaDataInputProtocol& JavaDataInputProtocol::GetInstance() {
    static JavaDataInputProtocol instance;
    return instance;
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, char& value) {
    return ReadAs<Yr::UInt8>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, bool& value) {
    Yr::UInt8 byte = 0;
    const Yr::YrErrCode status = ReadBits(channel, byte);
    if (status == 0) value = byte == 1;
    return status;
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, short& value) {
    return ReadAs<Yr::UInt16>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, unsigned short& value) {
    return ReadAs<Yr::UInt16>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, int& value) {
    return ReadAs<Yr::UInt32>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, Yr::Int64& value) {
    return ReadAs<Yr::UInt64>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, float& value) {
    return ReadAs<Yr::UInt32>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, double& value) {
    return ReadAs<Yr::UInt64>(channel, value);
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, Yr::Guid& value) {
    char bytes[sizeof(Yr::Guid)];
    if (const Yr::YrErrCode status = JavaDataReading::ReadExactly(channel, bytes, sizeof bytes))
        return status;
    value.data1 = BigEndian::Load<Yr::UInt32>(bytes);
    value.data2 = BigEndian::Load<Yr::UInt16>(bytes + 4);
    value.data3 = BigEndian::Load<Yr::UInt16>(bytes + 6);
    std::memcpy(value.data4, bytes + 8, sizeof value.data4);
    return 0;
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, char* buffer) {
    Yr::UniString text;
    const Yr::YrErrCode status = ReadUTF(channel, text);
    if (status != 0) return status;
    const std::string& utf8 = text.ToUtf8();
    std::memcpy(buffer, utf8.c_str(), utf8.size() + 1);
    return 0;
}

Yr::YrErrCode JavaDataInputProtocol::Read(Yr::IChannel& channel, Yr::UniString& value) {
    return ReadUTF(channel, value);
}

}  // namespace Morvelan::Common::IO
