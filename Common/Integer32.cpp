#include "Common/Integer32.h"

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/Integer32";

}  // namespace

Yr::Int32 Integer32::Parse(const Yr::UniString& text) {
    return detail::ParseOrThrow<Integer32, Yr::Int32>(
        text, "Failed to parse literal as integer32 value.", kSourceUnit, __LINE__);
}

bool Integer32::Parse(const Yr::UniString& text, Yr::Int32& value) {
    return detail::ParseWholeDecimal(text, value, kSourceUnit, __LINE__);
}

Yr::UniString Integer32::ToString(Yr::Int32 value) {
    return Yr::UniString::Printf("%ld", value);
}

}  // namespace Morvelan::Common
