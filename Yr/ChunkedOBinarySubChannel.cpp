#include "Yr/ChunkedOBinarySubChannel.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Yr/Exceptions.h"
#include "Yr/OProtocolX.h"

namespace Yr {
namespace {

constexpr const char* kSourceUnit = "Yr/ChunkedOBinarySubChannel";
// A chunk's length is a protocol int, and 0 is the end mark.
constexpr UInt32 kMaxChunkSize = 0x7FFFFFFFu;

UInt32 CheckChunkSize(UInt32 chunkSize) {
    if (chunkSize == 0)
        throw IllegalArgumentException("Invalid chunk size: size is 0.", kSourceUnit, __LINE__,
                                       kIllegalArgumentErrorCode);
    if (chunkSize > kMaxChunkSize)
        throw IllegalArgumentException(
            UniString::Printf("Invalid chunk size: %lu exceeds %lu.", chunkSize, kMaxChunkSize),
            kSourceUnit, __LINE__, kIllegalArgumentErrorCode);
    return chunkSize;
}

}  // namespace

ChunkedOBinarySubChannel::ChunkedOBinarySubChannel(OBinaryChannel& channel,
                                                   const OProtocolX& protocol, UInt32 chunkSize)
    : m_channel(channel),
      m_protocol(protocol),
      m_chunkSize(CheckChunkSize(chunkSize)),
      m_buffer(AllocateMemoryBlock(m_chunkSize)) {}

ChunkedOBinarySubChannel::~ChunkedOBinarySubChannel() = default;

void ChunkedOBinarySubChannel::CheckOpened(UInt32 line) const {
    if (m_closed)
        throw IOException("Chunked output channel is closed.", kSourceUnit, line, kIOErrorCode);
}

void ChunkedOBinarySubChannel::WriteChunk(const char* data, UInt32 size) {
    m_protocol.Write(m_channel, static_cast<int>(size));
    m_channel.Write(data, size);
}

void ChunkedOBinarySubChannel::WriteCollected() {
    // Never an empty chunk: its length would read as the end mark.
    if (m_used == 0) return;
    // Emptied first: after a failed write the bytes are not sent twice.
    const UInt32 used = std::exchange(m_used, 0);
    WriteChunk(m_buffer.get(), used);
}

void ChunkedOBinarySubChannel::Write(const char* buffer, UInt32 size) {
    CheckOpened(__LINE__);
    while (size > 0) {
        if (m_used == 0 && size >= m_chunkSize) {
            WriteChunk(buffer, m_chunkSize);
            buffer += m_chunkSize;
            size -= m_chunkSize;
            continue;
        }
        const UInt32 part = std::min(size, m_chunkSize - m_used);
        std::memcpy(m_buffer.get() + m_used, buffer, part);
        m_used += part;
        buffer += part;
        size -= part;
        if (m_used == m_chunkSize) WriteCollected();
    }
}

void ChunkedOBinarySubChannel::Flush() {
    CheckOpened(__LINE__);
    WriteCollected();
    m_channel.Flush();
}

void ChunkedOBinarySubChannel::Close() {
    if (m_closed) return;
    // Closed even if the writes below fail: a retry must not frame twice.
    m_closed = true;
    WriteCollected();
    m_protocol.Write(m_channel, 0);
}

}  // namespace Yr
