#pragma once

#include "Yr/IBinaryChannel.h"

namespace Yr {

class IBinaryChannelUtilities {
public:
    // Reads until `buffer` is full or the stream ends; returns the count,
    // which is less than `size` only at the end of the stream.
    static UInt32 ReadFully(IBinaryChannel& channel, char* buffer, UInt32 size);
    // Skips by reading; returns the count skipped, less than `count` only at
    // the end of the stream.
    static UInt64 Skip(IBinaryChannel& channel, UInt64 count);
};

}  // namespace Yr
