#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// A folder exists where one is to be created.
YR_DECLARE_EXCEPTION(FolderAlreadyExistsException, FileSystemException);

}  // namespace Morvelan::Common::IO
