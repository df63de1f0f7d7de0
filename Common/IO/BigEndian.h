#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <type_traits>

#include "Yr/Types.h"

// Byte order and NaN rules shared by the Java data protocols: numbers travel
// big-endian, and a NaN is written as Java's canonical bit pattern so that
// equal values give equal bytes.
namespace Morvelan::Common::IO::BigEndian {

template <class Bits>
inline void Store(char* bytes, Bits value) {
    static_assert(std::is_unsigned_v<Bits>);
    for (std::size_t i = sizeof(Bits); i-- > 0;) {
        bytes[i] = static_cast<char>(value & 0xFF);
        value = static_cast<Bits>(value >> 7 >> 1);  // two steps: no UB for UInt8
    }
}

template <class Bits>
inline Bits Load(const char* bytes) {
    static_assert(std::is_unsigned_v<Bits>);
    Bits value = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        value = static_cast<Bits>((value << 7 << 1) | static_cast<unsigned char>(bytes[i]));
    return value;
}

inline Yr::UInt32 CanonicalBits(float value) {
    return std::isnan(value) ? 0x7FC00000u : std::bit_cast<Yr::UInt32>(value);
}

inline Yr::UInt64 CanonicalBits(double value) {
    return std::isnan(value) ? 0x7FF8000000000000ull : std::bit_cast<Yr::UInt64>(value);
}

}  // namespace Morvelan::Common::IO::BigEndian
