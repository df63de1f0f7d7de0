#include "Common/IO/FolderNotFoundException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(FolderNotFoundException)

}  // namespace Morvelan::Common::IO
