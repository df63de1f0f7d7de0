// Decodes the input as a stream of QuickLZ blocks, cut where each header says
// its block ends, with one decompressor into one fixed output buffer. Damage
// may only be refused with Yr::YrException.
//
// An input whose first byte has bit 7 set, which no block header has, is
// instead data for a round trip: byte 1 chooses the streaming buffer and the
// packet size, byte 2 how many times the rest is fed through (so that the
// history fills up and starts again); each block must decompress to its
// packet. Anything else crashes the target.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Common/IO/QuickLZCompressor.h"
#include "Common/IO/QuickLZDecompressor.h"
#include "Yr/YrException.h"

namespace {

using Morvelan::Common::IO::QuickLZCompressor;
using Morvelan::Common::IO::QuickLZDecompressor;

constexpr Yr::UInt32 kCapacity = 300000;
constexpr int kMaxBlocks = 64;
constexpr Yr::UInt32 kBuffers[] = {0, 100000, 1000000, 100000};

char g_output[kCapacity];

void DecodeStream(const char* data, std::size_t size) {
    QuickLZDecompressor decompressor;
    for (int count = 0; count < kMaxBlocks && size > 0; ++count) {
        std::size_t blockSize = size;
        if (size >= QuickLZDecompressor::GetHeaderSize(data[0]))
            blockSize =
                std::clamp<std::size_t>(QuickLZDecompressor::GetCompressedSize(data), 1, size);
        try {
            const Yr::UInt32 produced = decompressor.Decompress(
                data, static_cast<Yr::UInt32>(blockSize), g_output, kCapacity);
            if (produced > kCapacity) std::abort();
        } catch (const Yr::YrException&) {
            return;
        }
        data += blockSize;
        size -= blockSize;
    }
}

void RoundTrip(const char* data, std::size_t size) {
    if (size < 4) return;
    const auto choice = static_cast<unsigned char>(data[1]);
    const std::size_t packet = 1 + (choice >> 2) * 67u;
    const int repetitions = 1 + static_cast<unsigned char>(data[2]) % 32;
    const char* input = data + 3;
    const std::size_t inputSize = size - 3;

    QuickLZCompressor compressor(kBuffers[choice & 3]);
    QuickLZDecompressor decompressor;
    std::vector<char> block(packet + QuickLZCompressor::kMaxExpansion);
    for (int round = 0; round < repetitions; ++round)
        for (std::size_t at = 0; at < inputSize; at += packet) {
            const auto count = static_cast<Yr::UInt32>(std::min(packet, inputSize - at));
            const Yr::UInt32 blockSize = compressor.Compress(input + at, count, block.data());
            if (blockSize > count + QuickLZCompressor::kMaxExpansion) std::abort();
            try {
                if (decompressor.Decompress(block.data(), blockSize, g_output, kCapacity) !=
                        count ||
                    std::memcmp(g_output, input + at, count) != 0)
                    std::abort();
            } catch (const Yr::YrException&) {
                std::abort();
            }
        }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > 0x7FFFFFFF) return 0;
    const auto* bytes = reinterpret_cast<const char*>(data);
    if (data[0] & 0x80)
        RoundTrip(bytes, size);
    else
        DecodeStream(bytes, size);
    return 0;
}
