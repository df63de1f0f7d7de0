#include "Common/IO/FolderAlreadyExistsException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(FolderAlreadyExistsException)

}  // namespace Morvelan::Common::IO
