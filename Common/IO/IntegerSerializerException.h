#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

// Variable-length integer data that is truncated or too long for its type.
YR_DECLARE_EXCEPTION(IntegerSerializerException, Yr::IOException);

}  // namespace Morvelan::Common::IO
