#include "Yr/BinaryOChannel.h"

#include "Yr/OBinaryChannel.h"
#include "Yr/YrException.h"

namespace Yr {

YrErrCode BinaryOChannel::Write(const char* buffer, UInt32 size) {
    try {
        m_channel.Write(buffer, size);
    } catch (const YrException& failure) {
        // A failure must never read as success.
        return failure.GetErrorCode() != 0 ? failure.GetErrorCode() : kIOErrorCode;
    }
    return 0;
}

}  // namespace Yr
