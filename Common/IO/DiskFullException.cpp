#include "Common/IO/DiskFullException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(DiskFullException)

}  // namespace Morvelan::Common::IO
