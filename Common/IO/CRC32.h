#pragma once

#include "Yr/Types.h"

namespace Morvelan::Common::IO {

// The CRC-32 of zip and zlib, built up over any number of blocks. The value is
// kept complemented, as it is stored in files, so it chains like zlib's
// crc32(crc, buf, len) and compares directly with a stored checksum.
// A plain value; one thread at a time.
class CRC32 {
public:
    CRC32() = default;
    CRC32(const CRC32&) = default;
    CRC32(CRC32&&) = default;
    CRC32& operator=(const CRC32&) = default;
    CRC32& operator=(CRC32&&) = default;
    ~CRC32() = default;

    void Reset() { m_value = 0; }
    // `data` may be unaligned; with `size` 0 it is not read.
    void Update(const char* data, Yr::UInt32 size);
    Yr::UInt32 GetValue() const { return m_value; }

private:
    Yr::UInt32 m_value = 0;
};

}  // namespace Morvelan::Common::IO
