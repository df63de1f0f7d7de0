#pragma once

#include "InputOutput/Location.h"
#include "InputOutput/Status.h"

namespace IO {

// The locations the system knows for the running process.
class WellKnownLocations {
public:
    WellKnownLocations() = delete;

    static Status GetProgramFile(Location& location);
    static Status GetProgramFolder(Location& location);
    static Status GetWorkingFolder(Location& location);
    // $TMPDIR when it holds an absolute path, else /tmp; it must be a folder.
    static Status GetTempFolder(Location& location);
};

}  // namespace IO
