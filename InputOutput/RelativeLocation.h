#pragma once

#include <cstddef>
#include <vector>

#include "InputOutput/Name.h"
#include "InputOutput/Status.h"
#include "Yr/UniString.h"

namespace IO {

// A sequence of names below some folder, as in "a/b/c". A text that cannot
// be one leaves an empty relative location with an error status, which every
// later change reports again.
class RelativeLocation {
public:
    RelativeLocation() = default;

    // Empty segments ("a//b", "a/") are skipped as the system skips them;
    // a leading '/' or a NUL character gives kInvalidLocation.
    static RelativeLocation Parse(const Yr::UniString& text);

    Status GetStatus() const { return m_status; }
    bool IsEmpty() const { return m_names.empty(); }
    // No error status and every name legal.
    bool IsLegal() const;

    std::size_t GetNameCount() const { return m_names.size(); }
    Status GetNameAt(std::size_t index, Name& name) const;
    Status RemoveNameAt(std::size_t index);
    // A name with a separator or NUL in it would change the structure, so it
    // is refused with kInvalidLocation, like an empty one.
    Status Append(const Name& name);
    Status Append(const RelativeLocation& other);
    // Whether `other` has at least these names, in this order, at its front.
    bool IsPrefixOf(const RelativeLocation& other) const;

    // The names joined by '/'.
    Yr::UniString GetPathText() const;
    // The length of GetPathText in bytes, without building it.
    std::size_t GetPathByteCount() const;
    // The path text, or the text that failed to parse.
    Yr::UniString GetDisplayText() const;

    friend bool operator==(const RelativeLocation& a, const RelativeLocation& b) {
        return a.m_status == b.m_status && a.m_names == b.m_names;
    }

private:
    static bool CanBeAppended(const Name& name);

    std::vector<Name> m_names;
    Status m_status = kSuccess;
    Yr::UniString m_unparsedText;
};

}  // namespace IO
