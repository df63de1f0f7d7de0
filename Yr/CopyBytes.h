#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Yr {

namespace CopyBytesDetail {
struct Block16 {
    char bytes[16];
};
}  // namespace CopyBytesDetail

// memcpy for the few bytes of one value or short string: up to 64 bytes are
// moved inline with fixed-size, possibly overlapping moves, which spares the
// library call, and a caller that loads a value right after finds one store
// it can forward from (a library memcpy of 2 bytes stores them in pieces and
// stalls that load).
inline void CopyBytes(char* to, const char* from, std::size_t count) {
    using CopyBytesDetail::Block16;
    if (count < 4) {
        if (count == 1) {
            *to = *from;
        } else if (count > 1) {
            std::uint16_t head, tail;
            std::memcpy(&head, from, 2);
            std::memcpy(&tail, from + count - 2, 2);
            std::memcpy(to + count - 2, &tail, 2);
            std::memcpy(to, &head, 2);
        }
    } else if (count < 8) {
        std::uint32_t head, tail;
        std::memcpy(&head, from, 4);
        std::memcpy(&tail, from + count - 4, 4);
        std::memcpy(to + count - 4, &tail, 4);
        std::memcpy(to, &head, 4);
    } else if (count <= 16) {
        std::uint64_t head, tail;
        std::memcpy(&head, from, 8);
        std::memcpy(&tail, from + count - 8, 8);
        std::memcpy(to + count - 8, &tail, 8);
        std::memcpy(to, &head, 8);
    } else if (count <= 64) {
        // Whole 16-byte blocks, then the last 16 bytes, overlapping.
        Block16 tail;
        std::memcpy(&tail, from + count - 16, 16);
        for (std::size_t offset = 0; offset + 16 < count; offset += 16) {
            Block16 block;
            std::memcpy(&block, from + offset, 16);
            std::memcpy(to + offset, &block, 16);
        }
        std::memcpy(to + count - 16, &tail, 16);
    } else {
        std::memcpy(to, from, count);
    }
}

}  // namespace Yr
