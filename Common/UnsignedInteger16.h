#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// Unsigned integer16 literals: whole-text decimal literals within range.
class UnsignedInteger16 {
public:
    UnsignedInteger16() = delete;

    // Throws IllegalArgumentException for empty text, ConversionErrorException
    // for text that is not a literal of this type.
    static Yr::UInt16 Parse(const Yr::UniString& text);
    // False for text that is not a literal, `value` then untouched; empty text
    // still throws.
    static bool Parse(const Yr::UniString& text, Yr::UInt16& value);
    static Yr::UniString ToString(Yr::UInt16 value);
    // Lower-case hexadecimal without prefix.
    static Yr::UniString ToHexString(Yr::UInt16 value);
};

}  // namespace Morvelan::Common
