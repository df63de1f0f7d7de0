#pragma once

#include "Common/Containers/BlockManagerException.h"

namespace Morvelan::Common::Containers {

// A block identifier that names no block of the file.
YR_DECLARE_EXCEPTION(BlockNotFoundException, BlockManagerException);

}  // namespace Morvelan::Common::Containers
