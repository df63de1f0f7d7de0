#pragma once

#include "Common/Containers/BlockManagerException.h"

namespace Morvelan::Common::Containers {

// A block file whose format is broken or whose reads and writes failed.
YR_DECLARE_EXCEPTION(BlockFileException, BlockManagerException);

}  // namespace Morvelan::Common::Containers
