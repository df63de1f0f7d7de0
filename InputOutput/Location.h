#pragma once

#include <limits.h>

#include <cstddef>

#include "InputOutput/Name.h"
#include "InputOutput/RelativeLocation.h"
#include "InputOutput/Status.h"
#include "Yr/UniString.h"

namespace IO {

// An absolute location: the names from the root down, "/a/b". The location
// without names is the root, "/". A text that cannot be one leaves an empty
// location with an error status, which every later change reports again.
class Location {
public:
    // PATH_MAX counts the terminating NUL the system calls need.
    static constexpr std::size_t kMaxPathByteCount = PATH_MAX - 1;

    Location() = default;

    // Runs of '/' count as one; a text that does not start with '/' or holds
    // a NUL character gives kInvalidLocation.
    static Location Parse(const Yr::UniString& path);

    Status GetStatus() const { return m_status; }
    bool IsEmpty() const { return m_names.IsEmpty(); }
    // No error status, every name legal and the path short enough.
    bool IsLegal() const;

    std::size_t GetNameCount() const { return m_names.GetNameCount(); }
    Status GetNameAt(std::size_t index, Name& name) const;
    Status RemoveNameAt(std::size_t index);
    Status GetLastName(Name& name) const;
    Status RemoveLastName();
    Status Append(const Name& name);
    Status Append(const RelativeLocation& names);

    // Fails with the error status, if there is one.
    Status GetPath(Yr::UniString& path) const;
    // The path, or the text that failed to parse; for messages.
    Yr::UniString GetDisplayText() const;

    // True when `location` lies below this one; a location is not its own ancestor.
    bool IsAncestorOf(const Location& location) const;
    // The location the system reaches through links, "." and "..".
    Status Resolve(Location& resolved) const;

    friend bool operator==(const Location& a, const Location& b) {
        return a.m_status == b.m_status && a.m_names == b.m_names;
    }

private:
    Yr::UniString GetPathText() const { return "/" + m_names.GetPathText(); }

    RelativeLocation m_names;
    Status m_status = kSuccess;
    Yr::UniString m_unparsedText;
};

}  // namespace IO
