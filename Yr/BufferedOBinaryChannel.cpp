#include "Yr/BufferedOBinaryChannel.h"

#include <cstring>
#include <utility>

#include "Yr/ChannelArguments.h"
#include "Yr/Exceptions.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/BufferedOBinaryChannel";

}  // namespace

BufferedOBinaryChannel::BufferedOBinaryChannel(const Ref<OBinaryChannel>& inner, UInt32 bufferSize)
    : FilterOBinaryChannel(inner, kSourceUnit, __LINE__),
      m_bufferSize(CheckBufferSize(bufferSize, kSourceUnit, __LINE__)),
      m_buffer(AllocateMemoryBlock(m_bufferSize)) {}

BufferedOBinaryChannel::BufferedOBinaryChannel(OBinaryChannel& inner, UInt32 bufferSize)
    : FilterOBinaryChannel(inner),
      m_bufferSize(CheckBufferSize(bufferSize, kSourceUnit, __LINE__)),
      m_buffer(AllocateMemoryBlock(m_bufferSize)) {}

BufferedOBinaryChannel::~BufferedOBinaryChannel() = default;

void BufferedOBinaryChannel::CheckOpened(UInt32 line) const {
    if (m_closed)
        throw IOException("Buffered output channel is closed.", kSourceUnit, line, kIOErrorCode);
}

void BufferedOBinaryChannel::WriteCollected() {
    if (m_used == 0) return;
    // Emptied first: after a failed write the bytes are not sent again.
    const UInt32 used = std::exchange(m_used, 0);
    m_inner.Write(m_buffer.get(), used);
}

void BufferedOBinaryChannel::Write(const char* buffer, UInt32 size) {
    CheckOpened(__LINE__);
    if (size <= m_bufferSize - m_used) {
        if (size > 0) std::memcpy(m_buffer.get() + m_used, buffer, size);
        m_used += size;
        return;
    }
    WriteCollected();
    if (size >= m_bufferSize) {
        m_inner.Write(buffer, size);
        return;
    }
    std::memcpy(m_buffer.get(), buffer, size);
    m_used = size;
}

void BufferedOBinaryChannel::Flush() {
    CheckOpened(__LINE__);
    WriteCollected();
    m_inner.Flush();
}

void BufferedOBinaryChannel::Drain() {
    CheckOpened(__LINE__);
    WriteCollected();
}

void BufferedOBinaryChannel::Close() {
    if (m_closed) return;
    m_closed = true;
    // The inner channel is closed even when the last write fails, so that
    // no file stays open behind a broken pipeline; the write's failure wins.
    try {
        WriteCollected();
    } catch (...) {
        try {
            m_inner.Close();
        } catch (...) {
        }
        throw;
    }
    m_inner.Close();
}

}  // namespace Yr
