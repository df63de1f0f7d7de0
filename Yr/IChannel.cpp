#include "Yr/IChannel.h"

#include "Yr/ErrorCodes.h"

namespace Yr {

YrErrCode IChannel::ConvertObjectReadError(YrErrCode status) {
    return status == kEndOfInputErrorCode ? kDataIntegrityErrorCode : status;
}

}  // namespace Yr
