#pragma once

#include "InputOutput/Status.h"
#include "Yr/UniString.h"

namespace Morvelan::Common {

// "TEXT. DETAIL." where DETAIL says what the system reported: the status's
// own words for those the file system names, the system's text for the rest.
Yr::UniString GetErrorMessage(const char* text, ::IO::Status status);

}  // namespace Morvelan::Common
