#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

// Failures of reading and writing ZIP streams.
YR_DECLARE_EXCEPTION(ZipException, Yr::IOException);

}  // namespace Morvelan::Common::IO
