#pragma once

#include <cstring>

#include "Yr/Types.h"

// The on-disk layout of a block file, shared by the block file and by the
// tools that read one without opening it. All fields are unsigned 32-bit
// little-endian. See docs/formats/block-file.md.
namespace Morvelan::Common::Containers::BlockFileFormat {

// "YrBF" read as a little-endian 32-bit value.
inline constexpr Yr::UInt32 kMagic = 0x46427259;
inline constexpr Yr::UInt32 kMajorVersion = 1;
inline constexpr Yr::UInt32 kMinorVersion = 0;

// Header fields in block 0. Offset 12 is reserved: neither written nor read.
inline constexpr Yr::UInt32 kMagicOffset = 0;
inline constexpr Yr::UInt32 kMajorVersionOffset = 4;
inline constexpr Yr::UInt32 kMinorVersionOffset = 8;
inline constexpr Yr::UInt32 kBlockCountOffset = 16;
inline constexpr Yr::UInt32 kBlockSizeOffset = 20;
inline constexpr Yr::UInt32 kMasterListHeadOffset = 24;
inline constexpr Yr::UInt32 kFreeListHeadOffset = 28;
inline constexpr Yr::UInt32 kFreeBlockCountOffset = 32;
inline constexpr Yr::UInt32 kHeaderSize = 36;

// A free block starts with the identifier of the next one; 0 ends the list.
inline constexpr Yr::UInt32 kNextFreeOffset = 0;

// A master-list block: next list block, entries used, then the entries.
inline constexpr Yr::UInt32 kNextListBlockOffset = 0;
inline constexpr Yr::UInt32 kEntryCountOffset = 4;
inline constexpr Yr::UInt32 kFirstEntryOffset = 8;

inline constexpr Yr::UInt32 MasterListCapacity(Yr::UInt32 blockSize) {
    return (blockSize - kFirstEntryOffset) / 4;
}

inline Yr::UInt32 ReadField(const void* block, Yr::UInt32 offset) {
    unsigned char bytes[4];
    std::memcpy(bytes, static_cast<const unsigned char*>(block) + offset, 4);
    return Yr::UInt32(bytes[0]) | Yr::UInt32(bytes[1]) << 8 | Yr::UInt32(bytes[2]) << 16 |
           Yr::UInt32(bytes[3]) << 24;
}

inline void WriteField(void* block, Yr::UInt32 offset, Yr::UInt32 value) {
    const unsigned char bytes[4] = {static_cast<unsigned char>(value),
                                    static_cast<unsigned char>(value >> 8),
                                    static_cast<unsigned char>(value >> 16),
                                    static_cast<unsigned char>(value >> 24)};
    std::memcpy(static_cast<unsigned char*>(block) + offset, bytes, 4);
}

}  // namespace Morvelan::Common::Containers::BlockFileFormat
