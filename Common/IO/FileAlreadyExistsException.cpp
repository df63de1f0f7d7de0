#include "Common/IO/FileAlreadyExistsException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(FileAlreadyExistsException)

}  // namespace Morvelan::Common::IO
