#pragma once

#include <string>

#include "InputOutput/Location.h"
#include "Yr/Types.h"

namespace Morvelan::Tool {

// One file to put into an archive, and the entry name it gets there.
struct ArchiveSource {
    ::IO::Location location;
    std::string name;
    // As the file was when collected: reading stops there, without the
    // extra read that would find the end, as tar stores what it saw too.
    Yr::UInt64 size = 0;
    // Seconds since 1970, for formats that keep it.
    Yr::Int64 modificationTime = 0;
};

}  // namespace Morvelan::Tool
