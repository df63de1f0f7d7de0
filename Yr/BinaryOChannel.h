#pragma once

#include "Yr/OChannel.h"

namespace Yr {

class OBinaryChannel;

// Lets error-code writers write to a binary channel. A base-layer exception
// from the channel becomes its error code (kIOErrorCode if it has none);
// other exceptions pass through. Borrows the channel: the caller keeps it
// alive.
class BinaryOChannel final : public OChannel {
public:
    explicit BinaryOChannel(OBinaryChannel& channel) : m_channel(channel) {}

    YrErrCode Write(const char* buffer, UInt32 size) override;

private:
    OBinaryChannel& m_channel;
};

}  // namespace Yr
