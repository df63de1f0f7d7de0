#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// Unsigned integer64 literals: leading blanks and a plus sign are accepted, text after the number
// is ignored; a minus sign and values beyond 64 bits fail.
class UnsignedInteger64 {
public:
    UnsignedInteger64() = delete;

    // Throws IllegalArgumentException for empty text, ConversionErrorException
    // for text that is not a literal of this type.
    static Yr::UInt64 Parse(const Yr::UniString& text);
    // False for text that is not a literal, `value` then untouched; empty text
    // still throws.
    static bool Parse(const Yr::UniString& text, Yr::UInt64& value);
    static Yr::UniString ToString(Yr::UInt64 value);
    // Lower-case hexadecimal without prefix.
    static Yr::UniString ToHexString(Yr::UInt64 value);
    // The count in kB below 1 MiB, MB below 1 GiB, GB above, two decimals, scaled
    // in single precision: 512 gives "0.50 kB", 5 TiB "5120.00 GB".
    static Yr::UniString ToBytesString(Yr::UInt64 bytes);
};

}  // namespace Morvelan::Common
