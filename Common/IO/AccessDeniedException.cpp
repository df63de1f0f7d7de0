#include "Common/IO/AccessDeniedException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(AccessDeniedException)

}  // namespace Morvelan::Common::IO
