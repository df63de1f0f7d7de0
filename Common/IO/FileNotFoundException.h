#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// A file that does not exist.
YR_DECLARE_EXCEPTION(FileNotFoundException, FileSystemException);

}  // namespace Morvelan::Common::IO
