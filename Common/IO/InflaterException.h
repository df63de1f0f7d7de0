#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

// Corrupt compressed data. Deliberately not an I/O exception: the bytes
// arrived intact, so handlers of I/O faults must not take it for one.
YR_DECLARE_EXCEPTION(InflaterException, Yr::GeneralException);

}  // namespace Morvelan::Common::IO
