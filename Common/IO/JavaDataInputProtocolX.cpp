#include "Common/IO/JavaDataInputProtocolX.h"

#include <bit>

#include "Common/IO/BigEndian.h"
#include "Common/IO/JavaDataInputProtocolUtils.h"
#include "Common/IO/JavaDataReading.h"
#include "Yr/Guid.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/JavaDataInputProtocolX";
// The line peers and logs have always seen for a short stream.
constexpr Yr::UInt32 kEndOfInputLine = 47;

template <class Bits>
Bits ReadBits(Yr::IBinaryChannel& channel) {
    char bytes[sizeof(Bits)];
    JavaDataReading::ReadExactly(channel, bytes, sizeof bytes, kSourceUnit, kEndOfInputLine);
    return BigEndian::Load<Bits>(bytes);
}

}  // namespace

JavaDataInputProtocolX::JavaDataInputProtocolX(bool standardGuid) : m_standardGuid(standardGuid) {}

const JavaDataInputProtocolX& JavaDataInputProtocolX::GetInstance() {
    static const JavaDataInputProtocolX instance(true);
    return instance;
}

const JavaDataInputProtocolX& JavaDataInputProtocolX::GetOptimizedInstance() {
    static const JavaDataInputProtocolX instance(false);
    return instance;
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, char& value) const {
    value = std::bit_cast<char>(ReadBits<Yr::UInt8>(channel));
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, bool& value) const {
    value = ReadBits<Yr::UInt8>(channel) == 1;
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, short& value) const {
    value = std::bit_cast<short>(ReadBits<Yr::UInt16>(channel));
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, unsigned short& value) const {
    value = ReadBits<Yr::UInt16>(channel);
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, int& value) const {
    value = std::bit_cast<int>(ReadBits<Yr::UInt32>(channel));
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, Yr::Int64& value) const {
    value = std::bit_cast<Yr::Int64>(ReadBits<Yr::UInt64>(channel));
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, float& value) const {
    value = std::bit_cast<float>(ReadBits<Yr::UInt32>(channel));
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, double& value) const {
    value = std::bit_cast<double>(ReadBits<Yr::UInt64>(channel));
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, Yr::Guid& value) const {
    if (m_standardGuid) {
        Yr::IProtocolX::Read(channel, value);
        return;
    }
    JavaDataReading::ReadExactly(channel, reinterpret_cast<char*>(&value), sizeof value,
                                 kSourceUnit, kEndOfInputLine);
}

void JavaDataInputProtocolX::Read(Yr::IBinaryChannel& channel, Yr::UniString& value) const {
    ReadUTF(channel, value);
}

}  // namespace Morvelan::Common::IO
