#pragma once

#include "Yr/Types.h"

namespace Yr {

// The older, error-code flavour of an input channel: every call returns a
// status, 0 for success, instead of throwing. Used by one thread at a time.
class IChannel {
public:
    IChannel() = default;
    IChannel(const IChannel&) = delete;
    IChannel& operator=(const IChannel&) = delete;
    virtual ~IChannel() = default;

    // Reads exactly `size` bytes unless it fails; `delivered` tells how many
    // arrived either way. At the end of the stream the status is
    // kEndOfInputErrorCode.
    virtual YrErrCode Read(char* buffer, UInt32 size, UInt32& delivered) = 0;

    // Maps the status of a read that failed after delivering part of an
    // object. The end of the stream there means a cut-off object, which is
    // damaged data, not a clean end: kEndOfInputErrorCode becomes
    // kDataIntegrityErrorCode. Every other status stays as it is, 0 too.
    static YrErrCode ConvertObjectReadError(YrErrCode status);
};

}  // namespace Yr
