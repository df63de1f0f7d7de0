#include "Common/IO/InflaterException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(InflaterException)

}  // namespace Morvelan::Common::IO
