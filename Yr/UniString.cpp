#include "Yr/UniString.h"

#include <cassert>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "Yr/Exceptions.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/UniString";

[[noreturn]] void ThrowConversionError(const char* detail, UInt32 line) {
    throw ConversionErrorException(
        UniString::Printf("Invalid character data: %s.", detail).ToUtf8().c_str(), kSourceUnit,
        line, kIOErrorCode);
}

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// Decodes the code point at `offset` of well-formed UTF-8 and advances past it.
char32_t DecodeAt(const std::string& utf8, std::size_t& offset) {
    const auto lead = static_cast<unsigned char>(utf8[offset]);
    std::size_t count = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t value = count == 1 ? lead : lead & (0x3F >> (count - 1));
    for (std::size_t i = 1; i < count; ++i) value = (value << 6) | (utf8[offset + i] & 0x3F);
    offset += count;
    return value;
}

void EncodeTo(std::string& out, char32_t value) {
    if (value < 0x80) {
        out.push_back(static_cast<char>(value));
    } else if (value < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (value >> 6)));
        out.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    } else if (value < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (value >> 12)));
        out.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (value >> 18)));
        out.push_back(static_cast<char>(0x80 | ((value >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    }
}

bool IsScalarValue(char32_t value) {
    return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

// Length of the well-formed sequence at `offset`, or 0 with `fault` set.
// Overlong forms, surrogates, values past U+10FFFF and cut sequences fail.
std::size_t SequenceLength(std::string_view bytes, std::size_t offset, const char*& fault) {
    const auto lead = static_cast<unsigned char>(bytes[offset]);
    if (lead < 0x80) return 1;
    std::size_t count;
    char32_t minimum;
    if (lead >= 0xC2 && lead <= 0xDF) {
        count = 2, minimum = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        count = 3, minimum = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        count = 4, minimum = 0x10000;
    } else {
        fault = "byte is not a UTF-8 lead byte";
        return 0;
    }
    if (bytes.size() - offset < count) {
        fault = "UTF-8 sequence is cut short";
        return 0;
    }
    char32_t value = lead & (0x3F >> (count - 1));
    for (std::size_t k = 1; k < count; ++k) {
        const auto next = static_cast<unsigned char>(bytes[offset + k]);
        if (!IsContinuation(next)) {
            fault = "UTF-8 sequence is cut short";
            return 0;
        }
        value = (value << 6) | (next & 0x3F);
    }
    if (value < minimum || !IsScalarValue(value)) {
        fault = "UTF-8 sequence is not a Unicode scalar value";
        return 0;
    }
    return count;
}

// Wire strings are mostly ASCII: skip eight such bytes at a time.
std::size_t SkipAscii(std::string_view bytes, std::size_t offset) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
    while (offset + 8 <= bytes.size()) {
        std::uint64_t word;
        std::memcpy(&word, bytes.data() + offset, sizeof word);
        if ((word & kHighBits) != 0) break;
        offset += 8;
    }
    return offset;
}

void ValidateUtf8(std::string_view bytes) {
    const char* fault = nullptr;
    for (std::size_t i = SkipAscii(bytes, 0); i < bytes.size();) {
        if (static_cast<unsigned char>(bytes[i]) < 0x80) {
            i = SkipAscii(bytes, i + 1);
            continue;
        }
        const std::size_t length = SequenceLength(bytes, i, fault);
        if (length == 0) ThrowConversionError(fault, __LINE__);
        i += length;
    }
}

}  // namespace

UniString::UniString(const char* text, CharacterCode code)
    : UniString(text, text ? std::strlen(text) : 0, code) {}

UniString::UniString(const char* text, std::size_t byteCount, CharacterCode code) {
    if (text == nullptr || byteCount == 0) return;
    if (code == CharacterCode::Utf8) {
        ValidateUtf8(std::string_view(text, byteCount));
        m_utf8.assign(text, byteCount);
        return;
    }
    m_utf8.reserve(byteCount);
    for (std::size_t i = 0; i < byteCount; ++i)
        EncodeTo(m_utf8, static_cast<unsigned char>(text[i]));
}

UniString::UniString(std::u16string_view text) {
    m_utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t unit = text[i];
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            if (i + 1 == text.size() || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF)
                ThrowConversionError("unpaired UTF-16 surrogate", __LINE__);
            unit = 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
            ThrowConversionError("unpaired UTF-16 surrogate", __LINE__);
        }
        EncodeTo(m_utf8, unit);
    }
}

UniString::UniString(const char16_t* text)
    : UniString(text ? std::u16string_view(text) : std::u16string_view()) {}

UniString& UniString::AssignUtf8(const char* utf8, std::size_t byteCount) {
    ValidateUtf8(std::string_view(utf8, byteCount));
    m_utf8.assign(utf8, byteCount);
    return *this;
}

UniString UniString::FromUtf8(std::string_view utf8) {
    return UniString(utf8.data(), utf8.size(), CharacterCode::Utf8);
}

UniString UniString::FromUtf8Replacing(std::string_view bytes) {
    UniString result;
    result.m_utf8.reserve(bytes.size());
    const char* fault = nullptr;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = SequenceLength(bytes, i, fault);
        if (length == 0) {
            EncodeTo(result.m_utf8, 0xFFFD);
            ++i;
        } else {
            result.m_utf8.append(bytes, i, length);
            i += length;
        }
    }
    return result;
}

std::size_t UniString::GetLength() const {
    std::size_t count = 0;
    for (char byte : m_utf8) count += !IsContinuation(static_cast<unsigned char>(byte));
    return count;
}

UniString& UniString::Append(const UniString& text) {
    m_utf8 += text.m_utf8;
    return *this;
}

UniString& UniString::Append(const char* text) {
    return Append(UniString(text));
}

UniString& UniString::Append(char32_t character) {
    if (!IsScalarValue(character))
        ThrowConversionError("character is not a Unicode scalar value", __LINE__);
    EncodeTo(m_utf8, character);
    return *this;
}

std::size_t UniString::ByteOffsetOf(std::size_t index) const {
    std::size_t offset = 0;
    while (index > 0 && offset < m_utf8.size()) {
        DecodeAt(m_utf8, offset);
        --index;
    }
    return offset;
}

std::size_t UniString::CharacterIndexOf(std::size_t byteOffset) const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < byteOffset; ++i)
        count += !IsContinuation(static_cast<unsigned char>(m_utf8[i]));
    return count;
}

void UniString::Truncate(std::size_t length) {
    m_utf8.resize(ByteOffsetOf(length));
}

char32_t UniString::GetCharacterAt(std::size_t index) const {
    std::size_t offset = ByteOffsetOf(index);
    if (offset >= m_utf8.size())
        throw IllegalArgumentException("Invalid index: index is out of range.", kSourceUnit,
                                       __LINE__, kIllegalArgumentErrorCode);
    return DecodeAt(m_utf8, offset);
}

UniString UniString::GetSubstring(std::size_t start, std::size_t length) const {
    const std::size_t begin = ByteOffsetOf(start);
    std::size_t end = begin;
    while (length > 0 && end < m_utf8.size()) {
        DecodeAt(m_utf8, end);
        --length;
    }
    UniString result;
    result.m_utf8.assign(m_utf8, begin, end - begin);
    return result;
}

std::size_t UniString::FindFirst(char32_t character, std::size_t start) const {
    std::string encoded;
    if (!IsScalarValue(character)) return npos;
    EncodeTo(encoded, character);
    const std::size_t found = m_utf8.find(encoded, ByteOffsetOf(start));
    return found == std::string::npos ? npos : CharacterIndexOf(found);
}

std::size_t UniString::FindFirst(const UniString& text, std::size_t start) const {
    const std::size_t offset = ByteOffsetOf(start);
    if (offset == m_utf8.size() && !text.IsEmpty()) return npos;
    // Both sides are well formed, so a byte match always starts on a character.
    const std::size_t found = m_utf8.find(text.m_utf8, offset);
    return found == std::string::npos ? npos : CharacterIndexOf(found);
}

bool UniString::Contains(const UniString& text) const {
    return m_utf8.find(text.m_utf8) != std::string::npos;
}

void UniString::ReplaceAll(char32_t from, char32_t to) {
    if (from < 0x80 && to < 0x80) {
        for (char& byte : m_utf8)
            if (byte == static_cast<char>(from)) byte = static_cast<char>(to);
        return;
    }
    if (!IsScalarValue(to))
        ThrowConversionError("character is not a Unicode scalar value", __LINE__);
    std::string replaced;
    replaced.reserve(m_utf8.size());
    for (std::size_t offset = 0; offset < m_utf8.size();) {
        const char32_t character = DecodeAt(m_utf8, offset);
        EncodeTo(replaced, character == from ? to : character);
    }
    m_utf8.swap(replaced);
}

UInt32 UniString::GenerateHashValue() const {
    // FNV-1a over the UTF-8 bytes: stable across runs and platforms.
    UInt32 hash = 2166136261u;
    for (char byte : m_utf8) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619u;
    return hash;
}

std::string UniString::ToCStr(CharacterCode code) const {
    if (code == CharacterCode::Utf8) return m_utf8;
    std::string narrow;
    narrow.reserve(m_utf8.size());
    for (std::size_t offset = 0; offset < m_utf8.size();) {
        const char32_t character = DecodeAt(m_utf8, offset);
        if (character > 0xFF) ThrowConversionError("character has no Latin-1 form", __LINE__);
        narrow.push_back(static_cast<char>(character));
    }
    return narrow;
}

std::u16string UniString::ToUStr() const {
    std::u16string wide;
    wide.reserve(m_utf8.size());
    for (std::size_t offset = 0; offset < m_utf8.size();) {
        const char32_t character = DecodeAt(m_utf8, offset);
        if (character < 0x10000) {
            wide.push_back(static_cast<char16_t>(character));
        } else {
            wide.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
            wide.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        }
    }
    return wide;
}

UniString operator+(const UniString& a, const UniString& b) {
    UniString result(a);
    return result.Append(b);
}

UniString operator+(const UniString& a, const char* b) {
    return a + UniString(b);
}

UniString operator+(const char* a, const UniString& b) {
    return UniString(a) + b;
}

}  // namespace Yr
