#include "Common/IO/NotFileException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(NotFileException)

}  // namespace Morvelan::Common::IO
