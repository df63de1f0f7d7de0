#include "Common/IO/RewindableIBinaryChannel.h"

#include <algorithm>
#include <cstring>

#include "Common/StandardMemoryAllocator.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/RewindableIBinaryChannel";

Yr::UInt32 CheckCapacity(Yr::UInt32 capacity) {
    if (capacity == 0)
        throw Yr::IllegalArgumentException("Invalid capacity: capacity is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    return capacity;
}

// Through the library's allocator so that a large ring gets its
// out-of-memory recovery and exception.
char* AllocateRing(Yr::UInt32 capacity) {
    return static_cast<char*>(StandardMemoryAllocator::Allocate(capacity));
}

}  // namespace

void RewindableIBinaryChannel::RingDeleter::operator()(char* ring) const {
    StandardMemoryAllocator::Free(ring);
}

RewindableIBinaryChannel::RewindableIBinaryChannel(Yr::IBinaryChannel& inner)
    : FilterIBinaryChannel(inner) {}

RewindableIBinaryChannel::RewindableIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__) {}

RewindableIBinaryChannel::RewindableIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt32 capacity)
    : FilterIBinaryChannel(inner),
      m_capacity(CheckCapacity(capacity)),
      m_ring(AllocateRing(capacity)) {}

RewindableIBinaryChannel::RewindableIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner,
                                                   Yr::UInt32 capacity)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__),
      m_capacity(CheckCapacity(capacity)),
      m_ring(AllocateRing(capacity)) {}

RewindableIBinaryChannel::~RewindableIBinaryChannel() = default;

Yr::UInt64 RewindableIBinaryChannel::GetPosition() const {
    CheckOpened(kSourceUnit, __LINE__);
    return m_total - m_pending;
}

bool RewindableIBinaryChannel::CanRewind(Yr::UInt64 position) const {
    CheckOpened(kSourceUnit, __LINE__);
    return IsBuffered(position);
}

void RewindableIBinaryChannel::Rewind(Yr::UInt64 position) {
    CheckOpened(kSourceUnit, __LINE__);
    if (position > m_total)
        throw Yr::IOException(
            Yr::UniString::Printf("Failed to rewind rewindable binary input channel to position: "
                                  "%llu: the specified position hasn't been reached yet.",
                                  position),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    if (!IsBuffered(position))
        throw Yr::IOException(
            Yr::UniString::Printf("Failed to rewind rewindable binary input channel to position: "
                                  "%llu: the specified position hasn't been buffered yet.",
                                  position),
            kSourceUnit, __LINE__, Yr::kIOErrorCode);
    m_pending = m_total - position;
}

Yr::UInt32 RewindableIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid destination buffer: buffer is null.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid destination length: length is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    CheckOpened(kSourceUnit, __LINE__);
    if (m_pending > 0) {
        const Yr::UInt32 count = Get(m_total - m_pending, buffer, size);
        m_pending -= count;
        return count;
    }
    const Yr::UInt32 count = m_inner.Read(buffer, size, Yr::kReadSome);
    if (count > 0) {
        Append(buffer, count);
        m_total += count;
    }
    return count;
}

Yr::UInt64 RewindableIBinaryChannel::GetAvailable() const {
    CheckOpened(kSourceUnit, __LINE__);
    return m_inner.GetAvailable() + m_pending;
}

void RewindableIBinaryChannel::Close() {
    if (m_closed) return;
    m_inner.Close();
    m_pages.Clear();
    m_ring.reset();
    m_closed = true;
}

// Called before m_total counts the bytes: they start at position m_total.
void RewindableIBinaryChannel::Append(const char* data, Yr::UInt32 size) {
    if (!IsBound()) {
        // Offsets are 32-bit: the pages cannot address more than this.
        if (size > PagedBuffer::kMaximumSize - m_pages.GetSize())
            throw Yr::OutOfMemoryException("Rewind buffer is full.", kSourceUnit, __LINE__,
                                           Yr::kOutOfMemoryErrorCode);
        m_pages.Write(static_cast<Yr::UInt32>(m_total), data, size);
        return;
    }
    Yr::UInt64 position = m_total;
    if (size > m_capacity) {
        // Only the last bytes survive; skipping keeps each at its own slot.
        const auto skipped = static_cast<Yr::UInt32>(size - m_capacity);
        data += skipped;
        size -= skipped;
        position += skipped;
    }
    const auto offset = static_cast<Yr::UInt32>(position % m_capacity);
    const Yr::UInt32 first = std::min(size, static_cast<Yr::UInt32>(m_capacity - offset));
    std::memcpy(m_ring.get() + offset, data, first);
    std::memcpy(m_ring.get(), data + first, size - first);
}

Yr::UInt32 RewindableIBinaryChannel::Get(Yr::UInt64 position, char* buffer, Yr::UInt32 size) const {
    if (position >= m_total) return 0;
    const auto count = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(size, m_total - position));
    if (!IsBound()) return m_pages.Read(static_cast<Yr::UInt32>(position), buffer, count);
    const auto offset = static_cast<Yr::UInt32>(position % m_capacity);
    const Yr::UInt32 first = std::min(count, static_cast<Yr::UInt32>(m_capacity - offset));
    std::memcpy(buffer, m_ring.get() + offset, first);
    std::memcpy(buffer + first, m_ring.get(), count - first);
    return count;
}

bool RewindableIBinaryChannel::IsBuffered(Yr::UInt64 position) const {
    if (position > m_total) return false;
    return !IsBound() || m_total - position <= m_capacity;
}

void RewindableIBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Rewindable binary input channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
