#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "Yr/Types.h"

namespace Yr {

class UniString;

// One argument of UniString::Printf, captured with its kind and size so that
// the formatter can check it against its conversion instead of trusting it.
class FormatArgument {
public:
    enum class Kind { None, Signed, Unsigned, Character, Floating, NarrowString, Text, Pointer };

    FormatArgument() = default;

    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    FormatArgument(T value) : m_size(sizeof(T)) {  // NOLINT
        if constexpr (std::is_same_v<T, char> || std::is_same_v<T, bool>) {
            m_kind = std::is_same_v<T, char> ? Kind::Character : Kind::Unsigned;
            m_unsigned = static_cast<unsigned char>(value);
        } else if constexpr (std::is_signed_v<T>) {
            m_kind = Kind::Signed;
            m_signed = value;
        } else {
            m_kind = Kind::Unsigned;
            m_unsigned = value;
        }
    }
    template <class T, std::enable_if_t<std::is_floating_point_v<T>, int> = 0>
    FormatArgument(T value)
        : m_kind(Kind::Floating), m_floating(static_cast<double>(value)) {}  // NOLINT
    FormatArgument(const char* text)
        : m_kind(Kind::NarrowString), m_narrow(text ? text : "(null)") {}  // NOLINT
    FormatArgument(const std::string& text)
        : m_kind(Kind::NarrowString), m_narrow(text) {}                                    // NOLINT
    FormatArgument(std::string_view text) : m_kind(Kind::NarrowString), m_narrow(text) {}  // NOLINT
    FormatArgument(const UniString& text) : m_kind(Kind::Text), m_text(&text) {}           // NOLINT
    FormatArgument(const void* pointer) : m_kind(Kind::Pointer), m_pointer(pointer) {}     // NOLINT

    Kind GetKind() const { return m_kind; }
    std::size_t GetSize() const { return m_size; }
    Int64 GetSigned() const { return m_signed; }
    UInt64 GetUnsigned() const { return m_unsigned; }
    double GetFloating() const { return m_floating; }
    std::string_view GetNarrow() const { return m_narrow; }
    const UniString& GetText() const { return *m_text; }
    const void* GetPointer() const { return m_pointer; }

private:
    Kind m_kind = Kind::None;
    std::size_t m_size = 0;
    Int64 m_signed = 0;
    UInt64 m_unsigned = 0;
    double m_floating = 0;
    std::string_view m_narrow;
    const UniString* m_text = nullptr;
    const void* m_pointer = nullptr;
};

}  // namespace Yr
