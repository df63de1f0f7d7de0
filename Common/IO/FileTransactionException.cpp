#include "Common/IO/FileTransactionException.h"

namespace Morvelan::Common::IO {

YR_DEFINE_EXCEPTION(FileTransactionException)

}  // namespace Morvelan::Common::IO
