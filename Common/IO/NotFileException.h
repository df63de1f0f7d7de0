#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// A location that names something other than a file where a file is required.
YR_DECLARE_EXCEPTION(NotFileException, FileSystemException);

}  // namespace Morvelan::Common::IO
