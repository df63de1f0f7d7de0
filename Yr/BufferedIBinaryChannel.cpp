#include "Yr/BufferedIBinaryChannel.h"

#include <algorithm>
#include <cstring>

#include "Yr/ChannelArguments.h"
#include "Yr/Exceptions.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/BufferedIBinaryChannel";

}  // namespace

BufferedIBinaryChannel::BufferedIBinaryChannel(const Ref<IBinaryChannel>& inner, UInt32 bufferSize)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__),
      m_bufferSize(CheckBufferSize(bufferSize, kSourceUnit, __LINE__)),
      m_buffer(AllocateMemoryBlock(m_bufferSize)) {}

BufferedIBinaryChannel::BufferedIBinaryChannel(IBinaryChannel& inner, UInt32 bufferSize)
    : FilterIBinaryChannel(inner),
      m_bufferSize(CheckBufferSize(bufferSize, kSourceUnit, __LINE__)),
      m_buffer(AllocateMemoryBlock(m_bufferSize)) {}

BufferedIBinaryChannel::~BufferedIBinaryChannel() = default;

void BufferedIBinaryChannel::CheckOpened(UInt32 line) const {
    if (m_closed)
        throw IOException("Buffered input channel is closed.", kSourceUnit, line, kIOErrorCode);
}

UInt32 BufferedIBinaryChannel::Read(char* buffer, UInt32 size, ReadSomeModeSelector) {
    CheckOpened(__LINE__);
    if (size == 0) return 0;
    if (m_position == m_end) {
        if (size >= m_bufferSize) return m_inner.Read(buffer, size, kReadSome);
        m_position = 0;
        m_end = m_inner.Read(m_buffer.get(), m_bufferSize, kReadSome);
        if (m_end == 0) return 0;
    }
    // Only what is buffered: asking the inner channel for more could block.
    const UInt32 count = std::min(size, m_end - m_position);
    std::memcpy(buffer, m_buffer.get() + m_position, count);
    m_position += count;
    return count;
}

UInt64 BufferedIBinaryChannel::GetAvailable() const {
    CheckOpened(__LINE__);
    return (m_end - m_position) + m_inner.GetAvailable();
}

void BufferedIBinaryChannel::Close() {
    if (m_closed) return;
    m_closed = true;
    m_position = m_end = 0;
    m_inner.Close();
}

}  // namespace Yr
