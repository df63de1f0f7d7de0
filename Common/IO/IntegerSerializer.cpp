#include "Common/IO/IntegerSerializer.h"

#include "Common/IO/IntegerSerializerException.h"
#include "Yr/ErrorCodes.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/IntegerSerializer";
constexpr const char* kTooLarge = "Invalid input: represented number is too large.";
// The lines peers and logs have always seen for each range fault.
constexpr Yr::UInt32 kTooManyBytesLine = 41;
constexpr Yr::UInt32 kTenthByteLine = 45;
constexpr Yr::UInt32 kBeyond32BitsLine = 65;

constexpr int kLastByteIndex = 9;
constexpr unsigned kMoreBytes = 0x80;
constexpr unsigned kValueBits = 0x7F;

[[noreturn]] void ThrowTooLarge(Yr::UInt32 line) {
    throw IntegerSerializerException(kTooLarge, kSourceUnit, line, Yr::kIOErrorCode);
}

}  // namespace

void IntegerSerializer::Write(Yr::OChannelX& channel, unsigned long long value) {
    for (;;) {
        const auto group = static_cast<unsigned>(value & kValueBits);
        value >>= 7;
        if (value == 0) {
            channel.Write(static_cast<char>(group));
            return;
        }
        channel.Write(static_cast<char>(group | kMoreBytes));
    }
}

void IntegerSerializer::Write(Yr::OChannelX& channel, unsigned int value) {
    Write(channel, static_cast<unsigned long long>(value));
}

void IntegerSerializer::Read(Yr::IChannelX& channel, unsigned long long& value) {
    unsigned long long result = 0;
    for (int index = 0;; ++index) {
        char read = 0;
        channel.Read(read);
        const auto byte = static_cast<unsigned char>(read);
        if (index > kLastByteIndex) ThrowTooLarge(kTooManyBytesLine);
        // The tenth byte holds bit 63 alone.
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
