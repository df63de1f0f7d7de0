#pragma once

#include "Yr/UniString.h"

namespace Morvelan::Common {

// Boolean literals: exactly "true" or "false", case-sensitive, no blanks.
class Boolean {
public:
    Boolean() = delete;

    // Throws IllegalArgumentException for empty text, ConversionErrorException
    // for any other text that is not a literal.
    static bool Parse(const Yr::UniString& text);
    // False for a text that is not a literal, `value` then untouched; empty
    // text still throws.
    static bool Parse(const Yr::UniString& text, bool& value);
    static const char* ToCStr(bool value);
    static Yr::UniString ToString(bool value);
};

}  // namespace Morvelan::Common
