#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// Integer16 literals: whole-text decimal literals within range, optional leading minus.
class Integer16 {
public:
    Integer16() = delete;

    // Throws IllegalArgumentException for empty text, ConversionErrorException
    // for text that is not a literal of this type.
    static Yr::Int16 Parse(const Yr::UniString& text);
    // False for text that is not a literal, `value` then untouched; empty text
    // still throws.
    static bool Parse(const Yr::UniString& text, Yr::Int16& value);
    static Yr::UniString ToString(Yr::Int16 value);
};

}  // namespace Morvelan::Common
