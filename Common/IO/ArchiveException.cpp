#include "Common/IO/ArchiveException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(ArchiveException)

}  // namespace Morvelan::Common::IO
