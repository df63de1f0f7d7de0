#include "InputOutput/Name.h"

#include <array>
#include <string>

namespace IO {
namespace {

constexpr char32_t kReplacement = U'_';

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::size_t Name::FindExtensionDot() const {
    const std::size_t dot = m_text.ToUtf8().rfind('.');
    return dot == 0 ? std::string::npos : dot;
}

bool Name::HasExtension() const {
    return FindExtensionDot() != std::string::npos;
}

Yr::UniString Name::GetBase() const {
    const std::size_t dot = FindExtensionDot();
    if (dot == std::string::npos) return m_text;
    return Yr::UniString::FromUtf8(std::string_view(m_text.ToUtf8()).substr(0, dot));
}

Yr::UniString Name::GetExtension() const {
    const std::size_t dot = FindExtensionDot();
    if (dot == std::string::npos) return {};
    return Yr::UniString::FromUtf8(std::string_view(m_text.ToUtf8()).substr(dot + 1));
}

bool Name::IsLegalCharacter(char32_t character) {
    if (character < 0x20) return false;
    switch (character) {
        case U'"':
        case U'*':
        case U'/':
        case U':':
        case U'<':
        case U'>':
        case U'?':
        case U'\\':
        case U'|':
            return false;
        default:
            return true;
    }
}

// Every illegal character is ASCII, and in UTF-8 an ASCII byte is always a
// whole character, so the bytes can be tested one by one.
Yr::UniString Name::ReplaceIllegalCharacters(const Yr::UniString& text, char32_t replacement) {
    const std::string encodedReplacement = Yr::UniString().Append(replacement).ToUtf8();
    std::string result;
    result.reserve(text.GetByteCount());
    for (const char byte : text.ToUtf8()) {
        if (IsLegalCharacter(static_cast<unsigned char>(byte)))
            result.push_back(byte);
        else
            result += encodedReplacement;
    }
    return Yr::UniString::FromUtf8(result);
}

bool Name::IsLegal() const {
    // Every location checks all its names, so this runs for each name of
    // each path the library touches: a table, not a call per byte.
    static const auto kLegal = [] {
        std::array<bool, 256> legal{};
        for (int byte = 0; byte < 256; ++byte) legal[byte] = IsLegalCharacter(byte);
        return legal;
    }();
    if (IsEmpty() || m_text.GetByteCount() > kMaxByteCount) return false;
    for (const char byte : m_text.ToUtf8())
        if (!kLegal[static_cast<unsigned char>(byte)]) return false;
    return true;
}

Name Name::MakeLegal() const {
    std::string legal = ReplaceIllegalCharacters(m_text, kReplacement).ToUtf8();
    if (legal.size() > kMaxByteCount) {
        std::size_t cut = kMaxByteCount;
        while (cut > 0 && IsContinuationByte(legal[cut])) --cut;
        legal.resize(cut);
    }
    return Name(Yr::UniString::FromUtf8(legal));
}

}  // namespace IO
