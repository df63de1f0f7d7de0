#pragma once

#include "Yr/IChannel.h"

namespace Yr {

class IBinaryChannel;

// Lets error-code readers read a binary channel. The end of the stream
// becomes kEndOfInputErrorCode; a base-layer exception from the channel
// becomes its error code (kIOErrorCode if it has none); other exceptions
// pass through. Borrows the channel: the caller keeps it alive.
class BinaryIChannel final : public IChannel {
public:
    explicit BinaryIChannel(IBinaryChannel& channel) : m_channel(channel) {}

    YrErrCode Read(char* buffer, UInt32 size, UInt32& delivered) override;

private:
    IBinaryChannel& m_channel;
};

}  // namespace Yr
