#pragma once

#include <string>

#include "InputOutput/Location.h"

namespace Morvelan::Tool {

// One file to put into an archive, and the entry name it gets there.
struct ArchiveSource {
    ::IO::Location location;
    std::string name;
};

}  // namespace Morvelan::Tool
