#include "Yr/MemoryIBinaryChannel.h"

#include <algorithm>

#include "Yr/CopyBytes.h"

namespace Yr {

MemoryIBinaryChannel::MemoryIBinaryChannel(const char* data, UInt32 size, bool copy)
    : m_data(data), m_size(data ? size : 0) {
    if (copy && m_size > 0) {
        m_copy.assign(data, size);
        m_data = m_copy.data();
    }
}

UInt32 MemoryIBinaryChannel::Read(char* buffer, UInt32 size, ReadSomeModeSelector) {
    const UInt32 count = std::min(size, m_size - m_position);
    CopyBytes(buffer, m_data + m_position, count);
    m_position += count;
    return count;
}

}  // namespace Yr
