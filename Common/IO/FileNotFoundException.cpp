#include "Common/IO/FileNotFoundException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(FileNotFoundException)

}  // namespace Morvelan::Common::IO
