#include "Common/Containers/BTreeIntegrityException.h"

namespace Morvelan::Common::Containers {

YR_DEFINE_EXCEPTION(BTreeIntegrityException)

}  // namespace Morvelan::Common::Containers
