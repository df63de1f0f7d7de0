#pragma once

#include <cstddef>
#include <string>

#include "Yr/Types.h"

// The record layouts of the ZIP format shared by the zip reader and writer:
// signatures, fixed sizes, flags and little-endian field access. See
// docs/formats/zip.md.
namespace Morvelan::Common::IO::ZipFormat {

inline constexpr Yr::UInt32 kLocalHeaderSignature = 0x04034b50;
inline constexpr Yr::UInt32 kDataDescriptorSignature = 0x08074b50;
inline constexpr Yr::UInt32 kCentralHeaderSignature = 0x02014b50;
inline constexpr Yr::UInt32 kEndSignature = 0x06054b50;
inline constexpr Yr::UInt32 kZip64EndSignature = 0x06064b50;
inline constexpr Yr::UInt32 kZip64LocatorSignature = 0x07064b50;

// Fixed parts, signature included.
inline constexpr std::size_t kLocalHeaderSize = 30;
inline constexpr std::size_t kCentralHeaderSize = 46;
inline constexpr std::size_t kEndSize = 22;
inline constexpr std::size_t kZip64EndSize = 56;
inline constexpr std::size_t kZip64LocatorSize = 20;
// Data descriptors with their signature: 32-bit and 64-bit sizes.
inline constexpr std::size_t kDataDescriptorSize = 16;
inline constexpr std::size_t kZip64DataDescriptorSize = 24;

// General-purpose flag bits.
inline constexpr Yr::UInt16 kFlagEncrypted = 1 << 0;
inline constexpr Yr::UInt16 kFlagDataDescriptor = 1 << 3;
inline constexpr Yr::UInt16 kFlagStrongEncryption = 1 << 6;
inline constexpr Yr::UInt16 kFlagUtf8 = 1 << 11;

// Extra field tags.
inline constexpr Yr::UInt16 kZip64ExtraTag = 0x0001;
inline constexpr Yr::UInt16 kExtendedTimestampTag = 0x5455;

// "Version needed to extract": 2.0 for deflate and folders, 4.5 for zip64.
inline constexpr Yr::UInt16 kVersionDefault = 20;
inline constexpr Yr::UInt16 kVersionZip64 = 45;
// "Version made by": Unix (3) in the high byte, so that external attributes
// carry the Unix mode in their upper 16 bits.
inline constexpr Yr::UInt16 kVersionMadeBy = (3 << 8) | kVersionZip64;

// A 32-bit size or offset field holding this says: see the zip64 extra field.
inline constexpr Yr::UInt32 kZip64Marker32 = 0xFFFFFFFF;
inline constexpr Yr::UInt16 kZip64Marker16 = 0xFFFF;

template <class Bits>
inline void Store(char* bytes, Bits value) {
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        bytes[i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

template <class Bits>
inline Bits Load(const char* bytes) {
    Bits value = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        value |= static_cast<Bits>(Bits{static_cast<unsigned char>(bytes[i])} << (8 * i));
    return value;
}

// Appends a value to a record being built.
template <class Bits>
inline void Append(std::string& record, Bits value) {
    char bytes[sizeof(Bits)];
    Store(bytes, value);
    record.append(bytes, sizeof(Bits));
}

}  // namespace Morvelan::Common::IO::ZipFormat
