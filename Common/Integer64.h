#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// Integer64 literals: whole-text decimal literals within range, optional leading minus.
class Integer64 {
public:
    Integer64() = delete;

    // Throws IllegalArgumentException for empty text, ConversionErrorException
    // for text that is not a literal of this type.
    static Yr::Int64 Parse(const Yr::UniString& text);
    // False for text that is not a literal, `value` then untouched; empty text
    // still throws.
    static bool Parse(const Yr::UniString& text, Yr::Int64& value);
    static Yr::UniString ToString(Yr::Int64 value);
    // Lower-case hexadecimal without prefix.
    static Yr::UniString ToHexString(Yr::Int64 value);
};

}  // namespace Morvelan::Common
