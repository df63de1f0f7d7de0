#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/IProtocolX.h"

namespace Yr {

// A binary input channel bound to a protocol: Read(value) reads one value of
// any type the protocol knows. Borrows both; the caller keeps them alive.
class IChannelX {
public:
    IChannelX(IBinaryChannel& channel, const IProtocolX& protocol)
        : m_channel(channel), m_protocol(protocol) {}
    IChannelX(const IChannelX&) = delete;
    IChannelX& operator=(const IChannelX&) = delete;

    template <class T>
    void Read(T& value) {
        m_protocol.Read(m_channel, value);
    }

    IBinaryChannel& GetBinaryChannel() const { return m_channel; }
    const IProtocolX& GetProtocol() const { return m_protocol; }

private:
    IBinaryChannel& m_channel;
    const IProtocolX& m_protocol;
};

}  // namespace Yr
