#include "Common/IO/SeekableOBinaryChannel.h"

#include <algorithm>
#include <vector>

#include "Yr/ChannelArguments.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/SeekableOBinaryChannel";
constexpr Yr::UInt32 kStagingSize = 65536;

// The buffer offset of an end position; the buffer cannot hold more.
Yr::UInt32 ToBufferOffset(Yr::UInt64 distance) {
    if (distance > PagedBuffer::kMaximumSize)
        throw Yr::OutOfMemoryException("Seekable binary output channel buffer is full.",
                                       kSourceUnit, __LINE__, Yr::kOutOfMemoryErrorCode);
    return static_cast<Yr::UInt32>(distance);
}
}  // namespace

SeekableOBinaryChannel::SeekableOBinaryChannel(Yr::OBinaryChannel& inner) : m_inner(inner) {}

SeekableOBinaryChannel::SeekableOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner)
    : m_innerRef(inner), m_inner(Yr::RequireOutput(inner, kSourceUnit, __LINE__)) {}

SeekableOBinaryChannel::~SeekableOBinaryChannel() = default;

void SeekableOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid buffer: buffer is null.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid buffer size: size is 0.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    CheckOpened(kSourceUnit, __LINE__);
    const Yr::UInt32 offset = ToBufferOffset(m_position - m_flushPosition);
    m_buffer.Write(offset, buffer, size);
    m_position += size;
    m_endPosition = std::max(m_endPosition, m_position);
}

void SeekableOBinaryChannel::Flush() {
    CheckOpened(kSourceUnit, __LINE__);
    FlushImpl();
}

void SeekableOBinaryChannel::Close() {
    if (m_closed) return;
    FlushImpl();
    m_inner.Close();
    m_closed = true;
}

void SeekableOBinaryChannel::Seek(Yr::UInt64 position) {
    CheckOpened(kSourceUnit, __LINE__);
    if (position < m_flushPosition)
        throw Yr::IOException(
            Yr::UniString::Printf("Failed to seek seekable output channel to position: %llu: the "
                                  "specified position is beyond flush position: %llu.",
                                  position, m_flushPosition),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    if (position > m_position) m_buffer.Grow(ToBufferOffset(position - m_flushPosition));
    m_position = position;
    m_endPosition = std::max(m_endPosition, position);
}

Yr::UInt64 SeekableOBinaryChannel::GetPosition() const {
    CheckOpened(kSourceUnit, __LINE__);
    return m_position;
}

Yr::UInt64 SeekableOBinaryChannel::GetEndPosition() const {
    CheckOpened(kSourceUnit, __LINE__);
    return m_endPosition;
}

Yr::UInt64 SeekableOBinaryChannel::GetFlushPosition() const {
    CheckOpened(kSourceUnit, __LINE__);
    return m_flushPosition;
}

void SeekableOBinaryChannel::FlushImpl() {
    if (m_position <= m_flushPosition) return;
    std::vector<char> staging(kStagingSize);
    const auto flushed = static_cast<Yr::UInt32>(m_position - m_flushPosition);
    for (Yr::UInt32 done = 0; done < flushed;) {
        const Yr::UInt32 count =
            m_buffer.Read(done, staging.data(), std::min(kStagingSize, flushed - done));
        m_inner.Write(staging.data(), count);
        done += count;
    }
    // Bytes beyond the position may still be overwritten: keep them, moved to
    // the front. Moving in ascending pieces never overwrites what is yet to move.
    const Yr::UInt32 kept = m_buffer.GetSize() - flushed;
    for (Yr::UInt32 done = 0; done < kept;) {
        const Yr::UInt32 count =
            m_buffer.Read(flushed + done, staging.data(), std::min(kStagingSize, kept - done));
        m_buffer.Write(done, staging.data(), count);
        done += count;
    }
    m_buffer.Truncate(kept);
    m_flushPosition = m_position;
}

void SeekableOBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Seekable binary output channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
