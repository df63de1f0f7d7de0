#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Yr {

// A 128-bit identifier. The memory layout (a 32-bit, two 16-bit fields in the
// machine's byte order, then 8 raw bytes) is fixed: some protocols copy the
// 16 bytes as they are. An aggregate, so a constant can be written in place:
// Guid{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}}.
struct Guid {
    UInt32 data1;
    UInt16 data2;
    UInt16 data3;
    UInt8 data4[8];

    // "00112233-4455-6677-8899-AABBCCDDEEFF": the fields in reading order,
    // uppercase hexadecimal.
    UniString ToString() const;
    // Reads the form ToString writes, in either case; anything else throws
    // IllegalArgumentException "Invalid GUID text: ...".
    static Guid Parse(const UniString& text);

    friend bool operator==(const Guid& a, const Guid& b) noexcept;
};

static_assert(sizeof(Guid) == 16 && std::is_standard_layout_v<Guid> &&
                  std::is_trivially_copyable_v<Guid>,
              "a Guid is copied to and from the wire as 16 bytes");

}  // namespace Yr

template <>
struct std::hash<Yr::Guid> {
    std::size_t operator()(const Yr::Guid& guid) const noexcept;
};
