#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

// Failures of reading, writing and updating archive streams and archive files.
YR_DECLARE_EXCEPTION(ArchiveException, Yr::IOException);

}  // namespace Morvelan::Common::IO
