#pragma once

#include "Yr/Types.h"

// The fixed numbers of the archive stream that its writer and reader share.
namespace Morvelan::Common::IO::ArchiveFormat {

// Raw ASCII at offset 0, no length and no terminator.
inline constexpr char kMagic[] = "MorvelanArchive";
inline constexpr Yr::UInt32 kMagicSize = sizeof(kMagic) - 1;
inline constexpr Yr::UInt32 kMajorVersion = 1;
inline constexpr Yr::UInt32 kMinorVersion = 1;

// Entry data: the chunk framing's chunk size, and what the compressors and
// the buffer at the top of each entry's chain are created with.
inline constexpr Yr::UInt32 kChunkSize = 262144;
inline constexpr Yr::UInt32 kDeflateBufferSize = 1024;
inline constexpr Yr::UInt32 kQuickLZPacketSize = 262144;
inline constexpr Yr::UInt32 kEntryBufferSize = 65536;
// Unread entry data is drained in pieces of this size.
inline constexpr Yr::UInt32 kDrainPieceSize = 4096;

}  // namespace Morvelan::Common::IO::ArchiveFormat
