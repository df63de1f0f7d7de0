#include "Yr/ChannelArguments.h"

#include "Yr/Exceptions.h"

namespace Yr {

IBinaryChannel& RequireInput(const Ref<IBinaryChannel>& channel, const char* sourceFile,
                             UInt32 line) {
    if (channel.IsNull())
        throw IllegalArgumentException("Invalid input channel: channel is null.", sourceFile, line,
                                       kIllegalArgumentErrorCode);
    return *channel;
}

OBinaryChannel& RequireOutput(const Ref<OBinaryChannel>& channel, const char* sourceFile,
                              UInt32 line) {
    if (channel.IsNull())
        throw IllegalArgumentException("Invalid output channel: channel is null.", sourceFile, line,
                                       kIllegalArgumentErrorCode);
    return *channel;
}

void CheckTargetBuffer(const char* buffer, UInt32 size, const char* sourceFile, UInt32 line) {
    if (buffer == nullptr)
        throw IllegalArgumentException("Invalid target buffer: target buffer is null.", sourceFile,
                                       line, kIllegalArgumentErrorCode);
    if (size == 0)
        throw IllegalArgumentException("Invalid target buffer: buffer size is 0.", sourceFile, line,
                                       kIllegalArgumentErrorCode);
}

UInt32 CheckBufferSize(UInt32 size, const char* sourceFile, UInt32 line) {
    if (size == 0)
        throw IllegalArgumentException("Invalid buffer size: size is 0.", sourceFile, line,
                                       kIllegalArgumentErrorCode);
    return size;
}

}  // namespace Yr
