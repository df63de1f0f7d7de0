#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::Containers {

// Root of the block storage failures. Not an I/O exception: a caller that
// handles stream faults should not mistake a broken store for one.
YR_DECLARE_EXCEPTION(BlockManagerException, Yr::GeneralException);

}  // namespace Morvelan::Common::Containers
