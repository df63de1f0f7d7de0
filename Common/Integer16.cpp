#include "Common/Integer16.h"

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/Integer16";

}  // namespace

Yr::Int16 Integer16::Parse(const Yr::UniString& text) {
    return detail::ParseOrThrow<Integer16, Yr::Int16>(
        text, "Failed to parse literal as integer16 value.", kSourceUnit, __LINE__);
}

bool Integer16::Parse(const Yr::UniString& text, Yr::Int16& value) {
    return detail::ParseWholeDecimal(text, value, kSourceUnit, __LINE__);
}

Yr::UniString Integer16::ToString(Yr::Int16 value) {
    return Yr::UniString::Printf("%hd", value);
}

}  // namespace Morvelan::Common
