#include "Common/IO/JavaDataOutputProtocolUtils.h"

#include <string_view>

#include "Common/IO/BigEndian.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/JavaDataOutputProtocolUtils";
// The line peers and logs have always seen for an over-long string.
constexpr Yr::UInt32 kTooLongLine = 35;

// The UTF-8 bytes that go on the wire: up to the first U+0000, which ends a
// string as it ends a NUL-terminated one.
std::string_view WireBytes(const Yr::UniString& text) {
    const std::string_view utf8 = text.ToUtf8();
    return utf8.substr(0, utf8.find('\0'));
}

}  // namespace

Yr::YrErrCode WriteUTF(Yr::OChannel& channel, const Yr::UniString& text) {
    try {
        const std::string_view bytes = WireBytes(text);
        if (bytes.size() > kMaxUTFByteCount) return Yr::kWriteErrorCode;
        char lengthBytes[2];
        BigEndian::Store(lengthBytes, static_cast<Yr::UInt16>(bytes.size()));
        if (const Yr::YrErrCode status = channel.Write(lengthBytes, 2)) return status;
        if (bytes.empty()) return 0;
        return channel.Write(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
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
