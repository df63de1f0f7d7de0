#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// No space left on the volume.
YR_DECLARE_EXCEPTION(DiskFullException, FileSystemException);

}  // namespace Morvelan::Common::IO
