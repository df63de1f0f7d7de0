#include "Yr/ChunkedIBinarySubChannel.h"

#include <algorithm>

#include "Yr/Exceptions.h"
#include "Yr/IProtocolX.h"

namespace Yr {
namespace {
constexpr const char* kSourceUnit = "Yr/ChunkedIBinarySubChannel";
}

ChunkedIBinarySubChannel::ChunkedIBinarySubChannel(IBinaryChannel& channel,
                                                   const IProtocolX& protocol)
    : m_channel(channel), m_protocol(protocol) {}

void ChunkedIBinarySubChannel::CheckOpened(UInt32 line) const {
    if (m_closed)
        throw IOException("Chunked input channel is closed.", kSourceUnit, line, kIOErrorCode);
}

UInt32 ChunkedIBinarySubChannel::Read(char* buffer, UInt32 size, ReadSomeModeSelector) {
    CheckOpened(__LINE__);
    if (m_ended || size == 0) return 0;
    if (m_left == 0) {
        int length = 0;
        m_protocol.Read(m_channel, length);
        if (length < 0)
            throw IOException(UniString::Printf("Invalid chunk length: %d.", length), kSourceUnit,
                              __LINE__, kIOErrorCode);
        if (length == 0) {
            m_ended = true;
            return 0;
        }
        m_left = static_cast<UInt32>(length);
    }
    const UInt32 count = m_channel.Read(buffer, std::min(size, m_left), kReadSome);
    if (count == 0)
        throw EndOfInputException("End of input reached.", kSourceUnit, __LINE__,
                                  kEndOfInputErrorCode);
    m_left -= count;
    return count;
}

UInt64 ChunkedIBinarySubChannel::GetAvailable() const {
    CheckOpened(__LINE__);
    if (m_left == 0) return 0;
    return std::min<UInt64>(m_left, m_channel.GetAvailable());
}

}  // namespace Yr
