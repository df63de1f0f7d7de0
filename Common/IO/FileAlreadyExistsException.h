#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// A file exists where one is to be created.
YR_DECLARE_EXCEPTION(FileAlreadyExistsException, FileSystemException);

}  // namespace Morvelan::Common::IO
