#include "Common/UnsignedInteger16.h"

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/UnsignedInteger16";

}  // namespace

Yr::UInt16 UnsignedInteger16::Parse(const Yr::UniString& text) {
    return detail::ParseOrThrow<UnsignedInteger16, Yr::UInt16>(
        text, "Failed to parse literal as unsigned integer16 value.", kSourceUnit, __LINE__);
}

bool UnsignedInteger16::Parse(const Yr::UniString& text, Yr::UInt16& value) {
    return detail::ParseWholeDecimal(text, value, kSourceUnit, __LINE__);
}

Yr::UniString UnsignedInteger16::ToString(Yr::UInt16 value) {
    return Yr::UniString::Printf("%hu", value);
}

Yr::UniString UnsignedInteger16::ToHexString(Yr::UInt16 value) {
    return Yr::UniString::Printf("%x", value);
}

}  // namespace Morvelan::Common
