#include "Yr/IProtocolX.h"

#include "Yr/Exceptions.h"
#include "Yr/Guid.h"
#include "Yr/IBinaryChannelUtilities.h"

namespace Yr {
namespace {
constexpr const char* kSourceUnit = "Yr/IProtocolX";
}

void IProtocolX::Read(IBinaryChannel& channel, Guid& value) const {
    int data1 = 0;
    Read(channel, data1);
    Read(channel, value.data2);
    Read(channel, value.data3);
    const UInt32 count = IBinaryChannelUtilities::ReadFully(
        channel, reinterpret_cast<char*>(value.data4), sizeof value.data4);
    if (count < sizeof value.data4)
        throw EndOfInputException("End of input reached.", kSourceUnit, __LINE__,
                                  kEndOfInputErrorCode);
    value.data1 = static_cast<UInt32>(data1);
}

void IProtocolX::Read(IBinaryChannel& channel, unsigned char& value) const {
    char bits = 0;
    Read(channel, bits);
    value = static_cast<unsigned char>(bits);
}

void IProtocolX::Read(IBinaryChannel& channel, unsigned int& value) const {
    int bits = 0;
    Read(channel, bits);
    value = static_cast<unsigned int>(bits);
}

void IProtocolX::Read(IBinaryChannel& channel, UInt64& value) const {
    Int64 bits = 0;
    Read(channel, bits);
    value = static_cast<UInt64>(bits);
}

}  // namespace Yr
