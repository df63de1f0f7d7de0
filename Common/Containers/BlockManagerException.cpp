#include "Common/Containers/BlockManagerException.h"

namespace Morvelan::Common::Containers {

YR_DEFINE_EXCEPTION(BlockManagerException)

}  // namespace Morvelan::Common::Containers
