#include "Common/IO/ZipException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(ZipException)

}  // namespace Morvelan::Common::IO
