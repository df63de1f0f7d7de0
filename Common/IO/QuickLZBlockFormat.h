#pragma once

// What the QuickLZ compressor and decompressor must agree on: the header
// bits, the item limits and the hashes. Internal to the two of them.
#include <bit>
#include <cstring>

#include "Yr/Types.h"

namespace Morvelan::Common::IO::QuickLZBlockFormat {

using Byte = unsigned char;

inline constexpr Yr::UInt32 kShortHeaderSize = 3;
inline constexpr Yr::UInt32 kLongHeaderSize = 9;
// Blocks of at least this many bytes need the long header's 32-bit sizes.
inline constexpr Yr::UInt32 kLongHeaderFrom = 216;
// Room for a whole header, so a reader can learn both sizes from one read.
inline constexpr Yr::UInt32 kMinimumBodySize = 9;

inline constexpr unsigned kCompressedFlag = 0x01;
inline constexpr unsigned kLongHeaderFlag = 0x02;
inline constexpr unsigned kLevelShift = 2;
inline constexpr unsigned kBufferCodeShift = 4;
inline constexpr unsigned kMarkerMask = 0xC0;
inline constexpr unsigned kMarker = 0x40;
inline constexpr unsigned kOtherBufferCode = 3;

// Bit 31 of a control word marks where its item flags end.
inline constexpr Yr::UInt32 kControlMarker = 0x80000000u;
inline constexpr Yr::UInt32 kMinMatch = 3;
inline constexpr Yr::UInt32 kMaxMatch = 255;
// A block always ends with this many literals.
inline constexpr Yr::UInt32 kFinalLiterals = 4;
// No match starts among the last this many bytes of a block.
inline constexpr Yr::UInt32 kMatchFreeTail = 10;

inline constexpr Yr::UInt32 kLevel1Buckets = 4096;
inline constexpr Yr::UInt32 kLevel2Buckets = 2048;
inline constexpr Yr::UInt32 kLevel2Slots = 4;
// Level 1's short match form keeps the length minus 2 in a nibble.
inline constexpr Yr::UInt32 kLevel1ShortMatchMax = 17;

inline constexpr Yr::UInt32 kBufferSizes[] = {0, 100000, 1000000};

inline unsigned BufferCode(Yr::UInt32 bufferSize) {
    for (unsigned code = 0; code < kOtherBufferCode; ++code)
        if (kBufferSizes[code] == bufferSize) return code;
    return kOtherBufferCode;
}

[[gnu::always_inline]] inline Yr::UInt32 Load32(const Byte* bytes) {
    Yr::UInt32 value;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (std::endian::native == std::endian::big) value = __builtin_bswap32(value);
    return value;
}

[[gnu::always_inline]] inline Yr::UInt64 Load64(const Byte* bytes) {
    Yr::UInt64 value;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (std::endian::native == std::endian::big) value = __builtin_bswap64(value);
    return value;
}

[[gnu::always_inline]] inline Yr::UInt32 Load16(const Byte* bytes) {
    return static_cast<Yr::UInt32>(bytes[0] | bytes[1] << 8);
}

[[gnu::always_inline]] inline void Store32(Byte* bytes, Yr::UInt32 value) {
    if constexpr (std::endian::native == std::endian::big) value = __builtin_bswap32(value);
    std::memcpy(bytes, &value, sizeof value);
}

[[gnu::always_inline]] inline void Store16(Byte* bytes, Yr::UInt32 value) {
    bytes[0] = static_cast<Byte>(value);
    bytes[1] = static_cast<Byte>(value >> 8);
}

// Both hashes look at the low three bytes of `bytes` only.
[[gnu::always_inline]] inline Yr::UInt32 Level1Hash(Yr::UInt32 bytes) {
    return ((bytes >> 12) ^ bytes) & (kLevel1Buckets - 1);
}

[[gnu::always_inline]] inline Yr::UInt32 Level2Hash(Yr::UInt32 bytes) {
    return ((bytes >> 9) ^ (bytes >> 13) ^ bytes) & (kLevel2Buckets - 1);
}

}  // namespace Morvelan::Common::IO::QuickLZBlockFormat
