#pragma once

#include "Yr/OBinaryChannel.h"
#include "Yr/OProtocolX.h"

namespace Yr {

// A binary output channel bound to a protocol: Write(value) writes one value
// of any type the protocol knows. Borrows both; the caller keeps them alive.
class OChannelX {
public:
    OChannelX(OBinaryChannel& channel, const OProtocolX& protocol)
        : m_channel(channel), m_protocol(protocol) {}
    OChannelX(const OChannelX&) = delete;
    OChannelX& operator=(const OChannelX&) = delete;

    template <class T>
    void Write(const T& value) {
        m_protocol.Write(m_channel, value);
    }

    OBinaryChannel& GetBinaryChannel() const { return m_channel; }
    const OProtocolX& GetProtocol() const { return m_protocol; }

private:
    OBinaryChannel& m_channel;
    const OProtocolX& m_protocol;
};

}  // namespace Yr
