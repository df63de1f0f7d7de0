#include "Common/Integer64.h"

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/Integer64";

}  // namespace

Yr::Int64 Integer64::Parse(const Yr::UniString& text) {
    return detail::ParseOrThrow<Integer64, Yr::Int64>(
        text, "Failed to parse literal as integer64 value.", kSourceUnit, __LINE__);
}

bool Integer64::Parse(const Yr::UniString& text, Yr::Int64& value) {
    return detail::ParseWholeDecimal(text, value, kSourceUnit, __LINE__);
}

Yr::UniString Integer64::ToString(Yr::Int64 value) {
    return detail::FormatInteger(value, 10, "Failed to convert integer64 to string.", kSourceUnit,
                                 __LINE__);
}

Yr::UniString Integer64::ToHexString(Yr::Int64 value) {
    // Two's complement, so -1 prints as sixteen f digits.
    return detail::FormatInteger(static_cast<Yr::UInt64>(value), 16,
                                 "Failed to convert integer64 to hex string.", kSourceUnit,
                                 __LINE__);
}

}  // namespace Morvelan::Common
