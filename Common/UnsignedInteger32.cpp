#include "Common/UnsignedInteger32.h"

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/UnsignedInteger32";

}  // namespace

Yr::UInt32 UnsignedInteger32::Parse(const Yr::UniString& text) {
    return detail::ParseOrThrow<UnsignedInteger32, Yr::UInt32>(
        text, "Failed to parse literal as unsigned integer32 value.", kSourceUnit, __LINE__);
}

bool UnsignedInteger32::Parse(const Yr::UniString& text, Yr::UInt32& value) {
    return detail::ParseWholeDecimal(text, value, kSourceUnit, __LINE__);
}

Yr::UniString UnsignedInteger32::ToString(Yr::UInt32 value) {
    return Yr::UniString::Printf("%lu", value);
}

Yr::UniString UnsignedInteger32::ToHexString(Yr::UInt32 value) {
    return Yr::UniString::Printf("%x", value);
}

}  // namespace Morvelan::Common
