#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "Yr/FormatArgument.h"
#include "Yr/Types.h"

namespace Yr {

// Narrow character codes a UniString converts from and to. UTF-8 is the
// platform's default: it is the form of Linux paths and of the wire strings.
enum class CharacterCode { Utf8, Latin1 };

// The Unicode string of the base layer. Stores well-formed UTF-8; every
// operation that speaks of characters, lengths or indices counts code points.
// Text that is not valid in its declared character code is refused with a
// ConversionErrorException, so an existing UniString is always well formed.
class UniString {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    UniString() = default;
    // Implicit on purpose: messages and names are passed as literals everywhere.
    UniString(const char* text, CharacterCode code = CharacterCode::Utf8);  // NOLINT
    UniString(const char* text, std::size_t byteCount, CharacterCode code = CharacterCode::Utf8);
    explicit UniString(std::u16string_view text);
    explicit UniString(const char16_t* text);

    static UniString FromUtf8(std::string_view utf8);
    // Replaces the text with `byteCount` bytes of UTF-8, reusing this
    // string's memory; ill-formed bytes throw and leave the text as it was.
    UniString& AssignUtf8(const char* utf8, std::size_t byteCount);
    // For bytes from outside (OS names, %s arguments): each byte that is not
    // part of a well-formed sequence becomes U+FFFD instead of failing.
    static UniString FromUtf8Replacing(std::string_view bytes);

    // Lengths: characters (code points) and bytes of the UTF-8 form.
    std::size_t GetLength() const;
    std::size_t GetByteCount() const { return m_utf8.size(); }
    bool IsEmpty() const { return m_utf8.empty(); }

    UniString& Append(const UniString& text);
    UniString& Append(const char* text);
    UniString& Append(char32_t character);
    UniString& operator+=(const UniString& text) { return Append(text); }
    UniString& operator+=(const char* text) { return Append(text); }

    // Reserves room for this many bytes of UTF-8.
    void SetCapacity(std::size_t byteCount) { m_utf8.reserve(byteCount); }
    // Keeps the first `length` characters.
    void Truncate(std::size_t length);
    void Clear() { m_utf8.clear(); }

    char32_t GetCharacterAt(std::size_t index) const;
    UniString GetSubstring(std::size_t start, std::size_t length = npos) const;
    UniString GetPrefix(std::size_t length) const { return GetSubstring(0, length); }
    // Character index of the first match at or after `start`, or npos.
    std::size_t FindFirst(char32_t character, std::size_t start = 0) const;
    std::size_t FindFirst(const UniString& text, std::size_t start = 0) const;
    bool Contains(char32_t character) const { return FindFirst(character) != npos; }
    bool Contains(const UniString& text) const;
    void ReplaceAll(char32_t from, char32_t to);

    UInt32 GenerateHashValue() const;

    // Narrow form in the given character code; a character the code cannot
    // represent throws ConversionErrorException.
    std::string ToCStr(CharacterCode code = CharacterCode::Utf8) const;
    std::u16string ToUStr() const;
    // The NUL-terminated UTF-8 form that %T inserts.
    const char* ToPrintf() const { return m_utf8.c_str(); }
    const std::string& ToUtf8() const { return m_utf8; }

    // Type-safe printf: %T takes a UniString, %s a narrow string, %lu an
    // unsigned 32-bit number, %llu a 64-bit one. A conversion that does not
    // fit its argument is a programming error, caught in debug builds.
    template <class... Args>
    static UniString Printf(const char* format, const Args&... args) {
        const FormatArgument arguments[] = {FormatArgument(args)..., FormatArgument()};
        return Format(format, arguments, sizeof...(Args));
    }

    friend bool operator==(const UniString& a, const UniString& b) { return a.m_utf8 == b.m_utf8; }
    friend auto operator<=>(const UniString& a, const UniString& b) {
        return a.m_utf8 <=> b.m_utf8;
    }

private:
    static UniString Format(const char* format, const FormatArgument* arguments, std::size_t count);
    std::size_t ByteOffsetOf(std::size_t index) const;
    std::size_t CharacterIndexOf(std::size_t byteOffset) const;

    std::string m_utf8;
};

UniString operator+(const UniString& a, const UniString& b);
UniString operator+(const UniString& a, const char* b);
UniString operator+(const char* a, const UniString& b);

}  // namespace Yr

template <>
struct std::hash<Yr::UniString> {
    std::size_t operator()(const Yr::UniString& text) const noexcept {
        return std::hash<std::string>()(text.ToUtf8());
    }
};
