#pragma once

#include <limits.h>

#include <cstddef>
#include <utility>

#include "Yr/UniString.h"

namespace IO {

// One name of a location: a file or folder name, or "." and "..". The
// extension is the text after the last dot; a leading dot alone (".profile")
// marks a hidden file, not an extension.
class Name {
public:
    // Linux takes at most this many bytes of UTF-8 in one name.
    static constexpr std::size_t kMaxByteCount = NAME_MAX;

    Name() = default;
    explicit Name(Yr::UniString text) : m_text(std::move(text)) {}

    const Yr::UniString& GetText() const { return m_text; }
    bool IsEmpty() const { return m_text.IsEmpty(); }
    bool HasExtension() const;
    // The whole text when there is no extension.
    Yr::UniString GetBase() const;
    // Empty when there is none, and for a name that ends in a dot.
    Yr::UniString GetExtension() const;

    // Not empty, every character legal and short enough for the file system.
    bool IsLegal() const;
    // Illegal characters become '_'; a name too long loses whole characters
    // from its end. An empty name stays empty.
    Name MakeLegal() const;

    // Everything but the control characters and " * / : < > ? \ |, which
    // some file system or shell of the users' platforms cannot take.
    static bool IsLegalCharacter(char32_t character);
    // Each illegal character replaced one for one, so the length stays.
    static Yr::UniString ReplaceIllegalCharacters(const Yr::UniString& text, char32_t replacement);

    friend bool operator==(const Name& a, const Name& b) { return a.m_text == b.m_text; }

private:
    // Byte offset of the dot before the extension, or npos.
    std::size_t FindExtensionDot() const;

    Yr::UniString m_text;
};

}  // namespace IO
