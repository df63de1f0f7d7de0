#pragma once

#include <utility>

#include "InputOutput/Location.h"
#include "InputOutput/Name.h"
#include "InputOutput/Status.h"
#include "Yr/UniString.h"

namespace IO {

// An existing folder, opened by its location.
class Folder {
public:
    Folder() = default;

    // kFolderNotFound when nothing is there, kNotFolder when something else is.
    static Status Open(const Location& location, Folder& folder);

    const Location& GetLocation() const { return m_location; }

    // A name prefix + number + suffix that no entry of the folder has now.
    // Nothing is created, so another process may still take it first.
    Status GenerateUnusedName(const Yr::UniString& prefix, const Yr::UniString& suffix,
                              Name& name) const;

private:
    explicit Folder(Location location) : m_location(std::move(location)) {}

    Location m_location;
};

}  // namespace IO
