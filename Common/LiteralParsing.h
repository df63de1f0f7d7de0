#pragma once

// Shared by the literal classes: the empty-text check, whole-text decimal
// conversion, the throwing Parse built on the non-throwing one, and 64-bit
// text output.
#include <charconv>
#include <type_traits>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::detail {

inline void CheckNotEmpty(const Yr::UniString& text, const char* message, const char* sourceUnit,
                          Yr::UInt32 line) {
    if (text.IsEmpty())
        throw Yr::IllegalArgumentException(message, sourceUnit, line,
                                           Yr::kIllegalArgumentErrorCode);
}

[[noreturn]] inline void ThrowConversionError(const Yr::UniString& message, const char* sourceUnit,
                                              Yr::UInt32 line) {
    throw Yr::ConversionErrorException(message, sourceUnit, line, Yr::kIOErrorCode);
}

template <class T>
void CheckIntegerNotEmpty(const Yr::UniString& text, const char* sourceUnit, Yr::UInt32 line) {
    CheckNotEmpty(text,
                  std::is_signed_v<T> ? "Invalid integer literal: literal is empty."
                                      : "Invalid unsigned integer literal: literal is empty.",
                  sourceUnit, line);
}

// Plain decimal over the whole text, range-checked: from_chars takes a minus
// for signed types only and refuses blanks, a plus sign and a 0x prefix,
// which is what the literals allow. `value` is untouched on failure.
template <class T>
bool ParseWholeDecimal(const Yr::UniString& text, T& value, const char* sourceUnit,
                       Yr::UInt32 line) {
    CheckIntegerNotEmpty<T>(text, sourceUnit, line);
    const std::string& digits = text.ToUtf8();
    const char* end = digits.data() + digits.size();
    // from_chars stores a leading number even when text follows it.
    T parsed{};
    const auto [stop, error] = std::from_chars(digits.data(), end, parsed);
    if (error != std::errc() || stop != end) return false;
    value = parsed;
    return true;
}

template <class Literal, class T>
T ParseOrThrow(const Yr::UniString& text, const char* failure, const char* sourceUnit,
               Yr::UInt32 line) {
    T value{};
    if (!Literal::Parse(text, value)) ThrowConversionError(failure, sourceUnit, line);
    return value;
}

// 64-bit values in base 10 or 16 through a 128-character buffer, no prefix.
template <class T>
Yr::UniString FormatInteger(T value, int base, const char* failure, const char* sourceUnit,
                            Yr::UInt32 line) {
    char buffer[128];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value, base);
    if (error != std::errc()) ThrowConversionError(failure, sourceUnit, line);
    return Yr::UniString(buffer, static_cast<std::size_t>(end - buffer));
}

}  // namespace Morvelan::Common::detail
