#include "Common/UnsignedInteger64.h"

#include <cctype>
#include <charconv>
#include <string>

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/UnsignedInteger64";

constexpr Yr::UInt64 kMebibyte = 1048576;
constexpr Yr::UInt64 kGibibyte = 1073741824;

// Reads like scanf's "%llu" conversion: blanks skipped, an optional plus,
// the digits, and whatever follows left alone. Unlike scanf, a minus sign
// and overflow fail instead of wrapping, so no value is out of range.
bool ScanOneValue(const std::string& text, Yr::UInt64& value) {
    std::size_t start = 0;
    while (start < text.size() && std::isspace(static_cast<unsigned char>(text[start]))) ++start;
    if (start < text.size() && text[start] == '+') ++start;
    const char* digits = text.data() + start;
    const auto [stop, error] = std::from_chars(digits, text.data() + text.size(), value);
    return error == std::errc() && stop != digits;
}

Yr::UniString Scale(float count, float factor, const char* format) {
    const float scaled = count * factor;  // stays single precision on purpose
    return Yr::UniString::Printf(format, scaled);
}

}  // namespace

Yr::UInt64 UnsignedInteger64::Parse(const Yr::UniString& text) {
    return detail::ParseOrThrow<UnsignedInteger64, Yr::UInt64>(
        text, "Failed to parse literal as unsigned integer64 value.", kSourceUnit, __LINE__);
}

bool UnsignedInteger64::Parse(const Yr::UniString& text, Yr::UInt64& value) {
    detail::CheckIntegerNotEmpty<Yr::UInt64>(text, kSourceUnit, __LINE__);
    return ScanOneValue(text.ToUtf8(), value);
}

Yr::UniString UnsignedInteger64::ToString(Yr::UInt64 value) {
    return Yr::UniString::Printf("%llu", value);
}

Yr::UniString UnsignedInteger64::ToHexString(Yr::UInt64 value) {
    // The decimal failure text is kept for hexadecimal on purpose.
    return detail::FormatInteger(value, 16, "Failed to convert unsigned integer64 to string.",
                                 kSourceUnit, __LINE__);
}

Yr::UniString UnsignedInteger64::ToBytesString(Yr::UInt64 bytes) {
    const auto count = static_cast<float>(bytes);
    if (bytes < kMebibyte) return Scale(count, 1.0f / 1024.0f, "%.2f kB");
    if (bytes < kGibibyte) return Scale(count, 1.0f / 1048576.0f, "%.2f MB");
    return Scale(count, 1.0f / 1073741824.0f, "%.2f GB");
}

}  // namespace Morvelan::Common
