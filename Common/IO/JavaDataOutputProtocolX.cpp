#include "Common/IO/JavaDataOutputProtocolX.h"

#include "Common/IO/BigEndian.h"
#include "Common/IO/JavaDataOutputProtocolUtils.h"
#include "Yr/Guid.h"

namespace Morvelan::Common::IO {
namespace {

template <class Bits>
void WriteBits(Yr::OBinaryChannel& channel, Bits bits) {
    char bytes[sizeof(Bits)];
    BigEndian::Store(bytes, bits);
    channel.Write(bytes, sizeof bytes);
}

}  // namespace

JavaDataOutputProtocolX::JavaDataOutputProtocolX(bool standardGuid)
    : m_standardGuid(standardGuid) {}

const JavaDataOutputProtocolX& JavaDataOutputProtocolX::GetInstance() {
    static const JavaDataOutputProtocolX instance(true);
    return instance;
}

const JavaDataOutputProtocolX& JavaDataOutputProtocolX::GetOptimizedInstance() {
    static const JavaDataOutputProtocolX instance(false);
    return instance;
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, char value) const {
    WriteBits(channel, static_cast<Yr::UInt8>(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, bool value) const {
    WriteBits(channel, static_cast<Yr::UInt8>(value ? 1 : 0));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, short value) const {
    WriteBits(channel, static_cast<Yr::UInt16>(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, unsigned short value) const {
    WriteBits(channel, static_cast<Yr::UInt16>(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, int value) const {
    WriteBits(channel, static_cast<Yr::UInt32>(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, Yr::Int64 value) const {
    WriteBits(channel, static_cast<Yr::UInt64>(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, float value) const {
    WriteBits(channel, BigEndian::CanonicalBits(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, double value) const {
    WriteBits(channel, BigEndian::CanonicalBits(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, long double value) const {
    Write(channel, static_cast<double>(value));
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, const Yr::Guid& value) const {
    if (m_standardGuid) {
        Yr::OProtocolX::Write(channel, value);
        return;
    }
    channel.Write(reinterpret_cast<const char*>(&value), sizeof value);
}

void JavaDataOutputProtocolX::Write(Yr::OBinaryChannel& channel, const Yr::UniString& value) const {
    WriteUTF(channel, value);
}

}  // namespace Morvelan::Common::IO
