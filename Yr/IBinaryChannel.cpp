#include "Yr/IBinaryChannel.h"

#include "Yr/Exceptions.h"

namespace Yr {

void IBinaryChannel::Read(char* buffer, UInt32 size, ReadAllModeSelector) {
    for (UInt32 done = 0; done < size;) {
        const UInt32 count = Read(buffer + done, size - done, kReadSome);
        if (count == 0)
            throw EndOfInputException("End of input reached.", "Yr/IBinaryChannel", __LINE__,
                                      kEndOfInputErrorCode);
        done += count;
    }
}

}  // namespace Yr
