#pragma once

#include <cstddef>

#include "Yr/OBinaryChannel.h"

namespace Yr {

// Writes into a block of memory that grows as needed. The block is the
// channel's until ReleaseBuffer hands it (allocated by MemoryManager) to
// the caller, who frees it with MemoryManager::Free.
class MemoryOBinaryChannel final : public OBinaryChannel {
public:
    MemoryOBinaryChannel();
    // Starts from a block of `capacity` bytes whose first `size` bytes are
    // kept. With `takeOwnership` the block (from MemoryManager) becomes the
    // channel's; otherwise its bytes are copied and the caller keeps it.
    MemoryOBinaryChannel(char* buffer, UInt32 size, UInt32 capacity, bool takeOwnership);
    ~MemoryOBinaryChannel() override;

    void Write(const char* buffer, UInt32 size) override;
    void Flush() override {}
    void Close() override {}

    UInt64 GetSize() const { return m_size; }
    const char* GetBuffer() const { return m_buffer; }
    // The block and its ownership; the channel starts again empty.
    char* ReleaseBuffer();

private:
    void Reserve(std::size_t capacity);
    [[gnu::noinline]] void Grow(UInt32 size);

    char* m_buffer = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

}  // namespace Yr
