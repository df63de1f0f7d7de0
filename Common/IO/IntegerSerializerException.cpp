#include "Common/IO/IntegerSerializerException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(IntegerSerializerException)

}  // namespace Morvelan::Common::IO
