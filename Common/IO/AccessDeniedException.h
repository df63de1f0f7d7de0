#pragma once

#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

// The system refused access to a file-system entry, often only for a while
// (another process holds it open); whole-entry operations retry this one.
YR_DECLARE_EXCEPTION(AccessDeniedException, FileSystemException);

}  // namespace Morvelan::Common::IO
