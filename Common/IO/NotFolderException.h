#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// A location that names something other than a folder where a folder is
// required.
YR_DECLARE_EXCEPTION(NotFolderException, FileSystemException);

}  // namespace Morvelan::Common::IO
