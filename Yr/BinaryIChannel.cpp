#include "Yr/BinaryIChannel.h"

#include "Yr/IBinaryChannel.h"
#include "Yr/YrException.h"

namespace Yr {

YrErrCode BinaryIChannel::Read(char* buffer, UInt32 size, UInt32& delivered) {
    delivered = 0;
    try {
        while (delivered < size) {
            const UInt32 count = m_channel.Read(buffer + delivered, size - delivered, kReadSome);
            if (count == 0) return kEndOfInputErrorCode;
            delivered += count;
        }
    } catch (const YrException& failure) {
        // A failure must never read as success.
        return failure.GetErrorCode() != 0 ? failure.GetErrorCode() : kIOErrorCode;
    }
    return 0;
}

}  // namespace Yr
