#pragma once

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

// A file transaction that could not be committed or aborted; the cause
// holds the file-system failure behind it.
YR_DECLARE_EXCEPTION(FileTransactionException, Yr::IOException);

}  // namespace Morvelan::Common::IO
