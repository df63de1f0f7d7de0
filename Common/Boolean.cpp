#include "Common/Boolean.h"

#include "Common/LiteralParsing.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/Boolean";

}  // namespace

bool Boolean::Parse(const Yr::UniString& text) {
    bool value = false;
    if (!Parse(text, value))
        detail::ThrowConversionError(
            Yr::UniString::Printf("Failed to parse boolean literal: '%T'.", text), kSourceUnit,
            __LINE__);
    return value;
}

bool Boolean::Parse(const Yr::UniString& text, bool& value) {
    detail::CheckNotEmpty(text, "Invalid boolean literal: literal is empty.", kSourceUnit,
                          __LINE__);
    const bool isTrue = text == "true";
    if (!isTrue && text != "false") return false;
    value = isTrue;
    return true;
}

const char* Boolean::ToCStr(bool value) {
    return value ? "true" : "false";
}

Yr::UniString Boolean::ToString(bool value) {
    return ToCStr(value);
}

}  // namespace Morvelan::Common
