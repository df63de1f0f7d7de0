#include "Common/Containers/BlockFileException.h"

namespace Morvelan::Common::Containers {

YR_DEFINE_EXCEPTION(BlockFileException)

}  // namespace Morvelan::Common::Containers
