#include "Common/Containers/BlockNotFoundException.h"

namespace Morvelan::Common::Containers {

YR_DEFINE_EXCEPTION(BlockNotFoundException)

}  // namespace Morvelan::Common::Containers
