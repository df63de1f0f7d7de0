#pragma once

#include "Yr/DataBuffer.h"
#include "Yr/Types.h"

namespace Morvelan::Common {

// Base64 text in the standard alphabet (padded) and the URL-safe one (unpadded).
// Raw forms allocate the target from Yr::MemoryManager; the caller frees it.
class Base64 {
public:
    static Yr::UInt32 Encode(const char* source, Yr::UInt32 sourceSize, char** target,
                             Yr::UInt32* targetSize);
    static Yr::UInt32 EncodeUrlSafe(const char* source, Yr::UInt32 sourceSize, char** target,
                                    Yr::UInt32* targetSize);
    static Yr::UInt32 Decode(const char* source, Yr::UInt32 sourceSize, char** target,
                             Yr::UInt32* targetSize);
    static Yr::UInt32 DecodeUrlSafe(const char* source, Yr::UInt32 sourceSize, char** target,
                                    Yr::UInt32* targetSize);

    static Yr::UInt32 Encode(const Yr::DataBuffer<unsigned char>& source,
                             Yr::DataBuffer<unsigned char>& target);
    static Yr::UInt32 EncodeUrlSafe(const Yr::DataBuffer<unsigned char>& source,
                                    Yr::DataBuffer<unsigned char>& target);
    static Yr::UInt32 Decode(const Yr::DataBuffer<unsigned char>& source,
                             Yr::DataBuffer<unsigned char>& target);
    static Yr::UInt32 DecodeUrlSafe(const Yr::DataBuffer<unsigned char>& source,
                                    Yr::DataBuffer<unsigned char>& target);

    static Yr::UInt32 Encode(const Yr::DataBuffer<char>& source, Yr::DataBuffer<char>& target);
    static Yr::UInt32 EncodeUrlSafe(const Yr::DataBuffer<char>& source,
                                    Yr::DataBuffer<char>& target);
    static Yr::UInt32 Decode(const Yr::DataBuffer<char>& source, Yr::DataBuffer<char>& target);
    static Yr::UInt32 DecodeUrlSafe(const Yr::DataBuffer<char>& source,
                                    Yr::DataBuffer<char>& target);

    // Writes into `target`, which holds at least EncodedSize / DecodedCapacity bytes.
    static Yr::UInt32 EncodeInto(const unsigned char* source, Yr::UInt32 size, char* target,
                                 bool urlSafe);
    static Yr::UInt32 DecodeInto(const char* source, Yr::UInt32 size, unsigned char* target,
                                 bool urlSafe);
    static Yr::UInt32 EncodedSize(Yr::UInt32 size, bool urlSafe);
    static Yr::UInt32 DecodedCapacity(Yr::UInt32 size) { return (size + 3) / 4 * 3; }
};

}  // namespace Morvelan::Common
