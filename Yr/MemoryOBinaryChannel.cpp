#include "Yr/MemoryOBinaryChannel.h"

#include <algorithm>
#include <cstring>

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
    if (size == 0) return;
    // Doubling keeps a long series of small writes linear.
    if (m_size + size > m_capacity)
        Reserve(std::max<std::size_t>(m_size + size, m_capacity * 2 + 64));
    std::memcpy(m_buffer + m_size, buffer, size);
    m_size += size;
}

char* MemoryOBinaryChannel::ReleaseBuffer() {
    char* released = m_buffer;
    m_buffer = nullptr;
    m_size = m_capacity = 0;
    return released;
}

}  // namespace Yr
