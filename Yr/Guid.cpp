#include "Yr/Guid.h"

#include <cstring>
#include <string>
#include <string_view>

#include "Yr/Exceptions.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/Guid";

constexpr char kHexDigits[] = "0123456789ABCDEF";
// Text positions of the four hyphens in the 36-character form.
constexpr std::size_t kHyphens[] = {8, 13, 18, 23};
constexpr std::size_t kTextLength = 36;

int HexValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

void AppendHex(std::string& out, UInt64 value, int digits) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        out.push_back(kHexDigits[(value >> shift) & 0xF]);
}

}  // namespace

UniString Guid::ToString() const {
    std::string text;
    text.reserve(kTextLength);
    AppendHex(text, data1, 8);
    text.push_back('-');
    AppendHex(text, data2, 4);
    text.push_back('-');
    AppendHex(text, data3, 4);
    text.push_back('-');
    for (int i = 0; i < 8; ++i) {
        if (i == 2) text.push_back('-');
        AppendHex(text, data4[i], 2);
    }
    return UniString::FromUtf8(text);
}

Guid Guid::Parse(const UniString& text) {
    const std::string& utf8 = text.ToUtf8();
    // The 32 digits in reading order; the hyphens must stand where ToString puts them.
    UInt8 digits[32];
    std::size_t count = 0;
    bool valid = utf8.size() == kTextLength;
    for (std::size_t i = 0; valid && i < kTextLength; ++i) {
        const bool hyphenHere =
            i == kHyphens[0] || i == kHyphens[1] || i == kHyphens[2] || i == kHyphens[3];
        if (hyphenHere) {
            valid = utf8[i] == '-';
        } else {
            const int value = HexValue(utf8[i]);
            valid = value >= 0;
            digits[count++] = static_cast<UInt8>(value);
        }
    }
    if (!valid)
        throw IllegalArgumentException(
            UniString::Printf("Invalid GUID text: '%T' is not of the form "
                              "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX.",
                              text),
            kSourceUnit, __LINE__, kIllegalArgumentErrorCode);

    auto take = [&digits](std::size_t first, std::size_t n) {
        UInt64 value = 0;
        for (std::size_t i = first; i < first + n; ++i) value = (value << 4) | digits[i];
        return value;
    };
    Guid guid{};
    guid.data1 = static_cast<UInt32>(take(0, 8));
    guid.data2 = static_cast<UInt16>(take(8, 4));
    guid.data3 = static_cast<UInt16>(take(12, 4));
    for (std::size_t i = 0; i < 8; ++i) guid.data4[i] = static_cast<UInt8>(take(16 + 2 * i, 2));
    return guid;
}

bool operator==(const Guid& a, const Guid& b) noexcept {
    return std::memcmp(&a, &b, sizeof(Guid)) == 0;
}

}  // namespace Yr

std::size_t std::hash<Yr::Guid>::operator()(const Yr::Guid& guid) const noexcept {
    return std::hash<std::string_view>()(
        std::string_view(reinterpret_cast<const char*>(&guid), sizeof(Yr::Guid)));
}
