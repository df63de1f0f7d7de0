#pragma once

#include <memory>

#include "Yr/Types.h"

namespace Morvelan::Common::IO {

// Decompresses blocks of the published QuickLZ block format, of every level
// (1, 2, 3) and streaming buffer (none, 100000 or 1000000 bytes) that a
// block's first byte announces. The first block fixes the stream's settings;
// blocks must come in the order they were compressed. Damaged blocks throw
// Yr::IOException and never make it read or write outside the buffers it is
// given. Used by one thread at a time.
class QuickLZDecompressor {
public:
    // The first byte of a block gives the length of its header, 3 or 9.
    static Yr::UInt32 GetHeaderSize(char firstByte);
    // The block's total size (header and body) and the size it decompresses
    // to. Both read the whole header: GetHeaderSize(header[0]) bytes.
    static Yr::UInt32 GetCompressedSize(const char* header);
    static Yr::UInt32 GetDecompressedSize(const char* header);

    QuickLZDecompressor();
    ~QuickLZDecompressor();
    QuickLZDecompressor(const QuickLZDecompressor&) = delete;
    QuickLZDecompressor& operator=(const QuickLZDecompressor&) = delete;

    // Decompresses the block of `blockSize` bytes at `block` into `output`,
    // which has room for `capacity` bytes, and returns the decompressed size.
    Yr::UInt32 Decompress(const char* block, Yr::UInt32 blockSize, char* output,
                          Yr::UInt32 capacity);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace Morvelan::Common::IO
