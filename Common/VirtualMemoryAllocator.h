#pragma once

#include <cstddef>

namespace Morvelan::Common {

// Large blocks of private read-write pages straight from the system, for
// caches that would fragment the heap. Recovers from failure as
// StandardMemoryAllocator does. Each region carries one extra page in front
// of the returned address holding its size, so that Free needs none and the
// result stays aligned to kHeaderSize. Thread-safe.
class VirtualMemoryAllocator final {
public:
    // Bytes in front of every block; also the alignment of the result.
    static constexpr std::size_t kHeaderSize = 4096;

    VirtualMemoryAllocator() = delete;

    static void* Allocate(std::size_t size);
    // Releases the whole region. Ignores null.
    static void Free(void* pointer);
};

}  // namespace Morvelan::Common
