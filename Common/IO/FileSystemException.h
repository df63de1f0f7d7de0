#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

// Root of the file-system failures; its subclasses name the common ones so
// callers can react to them (retry on access denied, create when missing).
YR_DECLARE_EXCEPTION(FileSystemException, Yr::IOException);

}  // namespace Morvelan::Common::IO
