#include "Common/IO/IntegerSerializer.h"

#include "Common/IO/IntegerSerializerException.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/IntegerSerializer";
constexpr const char* kTooLarge = "Invalid input: represented number is too large.";
// The lines peers and logs have always seen for each range fault.
constexpr Yr::UInt32 kTenthByteLine = 45;
constexpr Yr::UInt32 kBeyond32BitsLine = 65;

constexpr int kLastByteIndex = 9;
constexpr Yr::UInt32 kMaxByteCount = 10;
constexpr unsigned kMoreBytes = 0x80;
constexpr unsigned kValueBits = 0x7F;

[[noreturn]] void ThrowTooLarge(Yr::UInt32 line) {
    throw IntegerSerializerException(kTooLarge, kSourceUnit, line, Yr::kIOErrorCode);
}

// Bytes are taken from the binary channel one at a time: reading ahead would
// take the next value's bytes.
char ReadByte(Yr::IBinaryChannel& channel) {
    char byte = 0;
    if (channel.Read(&byte, 1, Yr::kReadSome) == 0)
        throw Yr::EndOfInputException("End of input reached.", kSourceUnit, __LINE__,
                                      Yr::kEndOfInputErrorCode);
    return byte;
}

}  // namespace

// The bytes are the wire form itself, whatever the channel's protocol, so
// they go to its binary channel in one call instead of one call a byte.
void IntegerSerializer::Write(Yr::OChannelX& channel, unsigned long long value) {
    char bytes[kMaxByteCount];
    Yr::UInt32 count = 0;
    while (value > kValueBits) {
        bytes[count++] = static_cast<char>((value & kValueBits) | kMoreBytes);
        value >>= 7;
    }
    bytes[count++] = static_cast<char>(value);
    channel.GetBinaryChannel().Write(bytes, count);
}

void IntegerSerializer::Write(Yr::OChannelX& channel, unsigned int value) {
    Write(channel, static_cast<unsigned long long>(value));
}

void IntegerSerializer::Read(Yr::IChannelX& channel, unsigned long long& value) {
    unsigned long long result = 0;
    for (int index = 0;; ++index) {
        const auto byte = static_cast<unsigned char>(ReadByte(channel.GetBinaryChannel()));
        // The tenth byte holds bit 63 alone and cannot ask for an eleventh.
        if (index == kLastByteIndex && byte > 1) ThrowTooLarge(kTenthByteLine);
        result |= static_cast<unsigned long long>(byte & kValueBits) << (7 * index);
        if ((byte & kMoreBytes) == 0) break;
    }
    value = result;
}

void IntegerSerializer::Read(Yr::IChannelX& channel, unsigned int& value) {
    unsigned long long wide = 0;
    Read(channel, wide);
    if (wide > 0xFFFFFFFFull) ThrowTooLarge(kBeyond32BitsLine);
    value = static_cast<unsigned int>(wide);
}

}  // namespace Morvelan::Common::IO
