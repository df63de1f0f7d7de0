#pragma once

#include <memory>

#include "Yr/Types.h"

namespace Morvelan::Common::IO {

// Compresses blocks in the published QuickLZ block format at level 1. With a
// streaming buffer, later blocks may refer to the bytes of earlier ones, so
// the blocks must be decompressed in the order they were made, by one
// decompressor. The state (history and hash table) is allocated once, by the
// constructor. Used by one thread at a time.
class QuickLZCompressor {
public:
    // A block is at most this many bytes longer than its input.
    static constexpr Yr::UInt32 kMaxExpansion = 400;
    // The history that the archive format's QuickLZ streams use.
    static constexpr Yr::UInt32 kDefaultStreamingBuffer = 1000000;

    // `streamingBuffer` 0 makes every block stand alone. Failing to allocate
    // the state throws Yr::OutOfMemoryException.
    explicit QuickLZCompressor(Yr::UInt32 streamingBuffer = kDefaultStreamingBuffer);
    ~QuickLZCompressor();
    QuickLZCompressor(const QuickLZCompressor&) = delete;
    QuickLZCompressor& operator=(const QuickLZCompressor&) = delete;

    // Compresses `size` bytes (1 to 2^32 - 1 - kMaxExpansion) into one block
    // and returns the block's size. `block` holds at least size +
    // kMaxExpansion bytes.
    Yr::UInt32 Compress(const char* data, Yr::UInt32 size, char* block);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace Morvelan::Common::IO
