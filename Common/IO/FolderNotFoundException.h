#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// A folder that does not exist.
YR_DECLARE_EXCEPTION(FolderNotFoundException, FileSystemException);

}  // namespace Morvelan::Common::IO
