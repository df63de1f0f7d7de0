#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::Containers {

// A tree kept in block storage whose links or keys contradict each other.
YR_DECLARE_EXCEPTION(BTreeIntegrityException, Yr::GeneralException);

}  // namespace Morvelan::Common::Containers
