#pragma once

#include "Yr/Types.h"

namespace Yr {

// The older, error-code flavour of an output channel: every call returns a
// status, 0 for success, instead of throwing. Used by one thread at a time.
class OChannel {
public:
    OChannel() = default;
    OChannel(const OChannel&) = delete;
    OChannel& operator=(const OChannel&) = delete;
    virtual ~OChannel() = default;

    // Writes all `size` bytes or fails; what a failed write left behind is
    // unspecified.
    virtual YrErrCode Write(const char* buffer, UInt32 size) = 0;
};

}  // namespace Yr
