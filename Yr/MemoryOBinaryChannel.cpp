#include "Yr/MemoryOBinaryChannel.h"

#include <algorithm>
#include <cstring>

#include "Yr/CopyBytes.h"
#include "Yr/MemoryManager.h"

namespace Yr {

MemoryOBinaryChannel::MemoryOBinaryChannel() = default;

MemoryOBinaryChannel::MemoryOBinaryChannel(char* buffer, UInt32 size, UInt32 capacity,
                                           bool takeOwnership) {
    size = std::min(size, capacity);
    if (takeOwnership) {
        m_buffer = buffer;
        m_size = size;
        m_capacity = capacity;
    } else if (buffer != nullptr) {
        Reserve(capacity);
        if (size > 0) std::memcpy(m_buffer, buffer, size);
        m_size = size;
    }
}

MemoryOBinaryChannel::~MemoryOBinaryChannel() {
    MemoryManager::Free(m_buffer);
}

void MemoryOBinaryChannel::Reserve(std::size_t capacity) {
    if (capacity <= m_capacity) return;
    char* grown = static_cast<char*>(MemoryManager::Allocate(capacity));
    if (m_size > 0) std::memcpy(grown, m_buffer, m_size);
    MemoryManager::Free(m_buffer);
    m_buffer = grown;
    m_capacity = capacity;
}

void MemoryOBinaryChannel::Write(const char* buffer, UInt32 size) {
    // Growing stays out of line, so the usual write saves no registers.
    if (m_capacity - m_size < size) [[unlikely]]
        Grow(size);
    char* at = m_buffer + m_size;
    m_size += size;
    CopyBytes(at, buffer, size);
}

// Doubling keeps a long series of small writes linear.
void MemoryOBinaryChannel::Grow(UInt32 size) {
    Reserve(std::max<std::size_t>(m_size + size, m_capacity * 2 + 64));
}

char* MemoryOBinaryChannel::ReleaseBuffer() {
    char* released = m_buffer;
    m_buffer = nullptr;
    m_size = m_capacity = 0;
    return released;
}

}  // namespace Yr
