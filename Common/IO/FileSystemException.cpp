#include "Common/IO/FileSystemException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(FileSystemException)

}  // namespace Morvelan::Common::IO
