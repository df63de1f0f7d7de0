#include "Common/IO/JavaDataOutputProtocolUtils.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include "Common/IO/BigEndian.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/JavaDataOutputProtocolUtils";
// The line peers and logs have always seen for an over-long string.
constexpr Yr::UInt32 kTooLongLine = 35;

// Where the first zero byte is, or the size. Wire strings are mostly short,
// and a memchr call costs more than the rest of their write: eight bytes are
// tested at a time inline.
std::size_t FindNul(std::string_view bytes) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    constexpr std::uint64_t kHighs = 0x8080808080808080ull;
    std::size_t offset = 0;
    for (; offset + 8 <= bytes.size(); offset += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes.data() + offset, sizeof word);
        if (((word - kOnes) & ~word & kHighs) != 0) break;  // a zero byte inside
    }
    while (offset < bytes.size() && bytes[offset] != '\0') ++offset;
    return offset;
}

// The UTF-8 bytes that go on the wire: up to the first U+0000, which ends a
// string as it ends a NUL-terminated one.
std::string_view WireBytes(const Yr::UniString& text) {
    const std::string_view utf8 = text.ToUtf8();
    return utf8.substr(0, FindNul(utf8));
}

Yr::YrErrCode WriteUTFOrStatus(Yr::OChannel& channel, const Yr::UniString& text) {
    const std::string_view bytes = WireBytes(text);
    if (bytes.size() > kMaxUTFByteCount) return Yr::kWriteErrorCode;
    char lengthBytes[2];
    BigEndian::Store(lengthBytes, static_cast<Yr::UInt16>(bytes.size()));
    if (const Yr::YrErrCode status = channel.Write(lengthBytes, 2)) return status;
    if (bytes.empty()) return 0;
    return channel.Write(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
}

}  // namespace

Yr::YrErrCode WriteUTF(Yr::OChannel& channel, const Yr::UniString& text) {
    try {
        return WriteUTFOrStatus(channel, text);
    } catch (const Yr::YrException&) {
        return Yr::kWriteErrorCode;
    }
}

void WriteUTF(Yr::OBinaryChannel& channel, const Yr::UniString& text) {
    const std::string_view bytes = WireBytes(text);
    if (bytes.size() > kMaxUTFByteCount)
        throw Yr::DataIntegrityException("String length exceeds limit.", kSourceUnit, kTooLongLine,
                                         Yr::kDataIntegrityErrorCode);
    char lengthBytes[2];
    BigEndian::Store(lengthBytes, static_cast<Yr::UInt16>(bytes.size()));
    channel.Write(lengthBytes, 2);
    if (!bytes.empty()) channel.Write(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
}

void WriteUTF(Yr::OChannelX& channel, const Yr::UniString& text) {
    WriteUTF(channel.GetBinaryChannel(), text);
}

}  // namespace Morvelan::Common::IO
