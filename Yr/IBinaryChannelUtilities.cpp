#include "Yr/IBinaryChannelUtilities.h"

#include <algorithm>

namespace Yr {

UInt32 IBinaryChannelUtilities::ReadFully(IBinaryChannel& channel, char* buffer, UInt32 size) {
    UInt32 done = 0;
    while (done < size) {
        const UInt32 count = channel.Read(buffer + done, size - done, kReadSome);
        if (count == 0) break;
        done += count;
    }
    return done;
}

UInt64 IBinaryChannelUtilities::Skip(IBinaryChannel& channel, UInt64 count) {
    char scratch[4096];
    UInt64 skipped = 0;
    while (skipped < count) {
        const auto chunk = static_cast<UInt32>(std::min<UInt64>(sizeof scratch, count - skipped));
        const UInt32 read = channel.Read(scratch, chunk, kReadSome);
        if (read == 0) break;
        skipped += read;
    }
    return skipped;
}

}  // namespace Yr
