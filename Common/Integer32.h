#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// Integer32 literals: whole-text decimal literals within range, optional leading minus.
class Integer32 {
public:
    Integer32() = delete;

    // Throws IllegalArgumentException for empty text, ConversionErrorException
    // for text that is not a literal of this type.
    static Yr::Int32 Parse(const Yr::UniString& text);
    // False for text that is not a literal, `value` then untouched; empty text
    // still throws.
    static bool Parse(const Yr::UniString& text, Yr::Int32& value);
    static Yr::UniString ToString(Yr::Int32 value);
};

}  // namespace Morvelan::Common
