#include "Common/IO/NotFolderException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(NotFolderException)

}  // namespace Morvelan::Common::IO
