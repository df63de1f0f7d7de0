#include "Common/IO/ChannelArguments.h"

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

Yr::IBinaryChannel& RequireInput(const Yr::Ref<Yr::IBinaryChannel>& channel, const char* sourceFile,
                                 Yr::UInt32 line) {
    if (channel.IsNull())
        throw Yr::IllegalArgumentException("Invalid input channel: channel is null.", sourceFile,
                                           line, Yr::kIllegalArgumentErrorCode);
    return *channel;
}

Yr::OBinaryChannel& RequireOutput(const Yr::Ref<Yr::OBinaryChannel>& channel,
                                  const char* sourceFile, Yr::UInt32 line) {
    if (channel.IsNull())
        throw Yr::IllegalArgumentException("Invalid output channel: channel is null.", sourceFile,
                                           line, Yr::kIllegalArgumentErrorCode);
    return *channel;
}

void CheckTargetBuffer(const char* buffer, Yr::UInt32 size, const char* sourceFile,
                       Yr::UInt32 line) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid target buffer: target buffer is null.",
                                           sourceFile, line, Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid target buffer: buffer size is 0.", sourceFile,
                                           line, Yr::kIllegalArgumentErrorCode);
}

}  // namespace Morvelan::Common::IO
