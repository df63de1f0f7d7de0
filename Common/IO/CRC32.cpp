#include "Common/IO/CRC32.h"

#include <array>
#include <bit>
#include <cstring>

namespace Morvelan::Common::IO {
namespace {

using Table = std::array<Yr::UInt32, 256>;
using Tables = std::array<Table, 16>;

constexpr Yr::UInt32 kPolynomial = 0xEDB88320u;

constexpr Tables BuildTables() {
    Tables tables{};
    for (Yr::UInt32 i = 0; i < 256; ++i) {
        Yr::UInt32 entry = i;
        for (int bit = 0; bit < 8; ++bit) entry = (entry >> 1) ^ ((entry & 1u) ? kPolynomial : 0u);
        tables[0][i] = entry;
    }
    // Table k advances a byte through k further zero bytes.
    for (int k = 1; k < 16; ++k)
        for (int i = 0; i < 256; ++i) {
            const Yr::UInt32 previous = tables[k - 1][i];
            tables[k][i] = (previous >> 8) ^ tables[0][previous & 0xFFu];
        }
    return tables;
}

// Cache-line aligned so each table spans exactly sixteen lines.
alignas(64) constexpr Tables kTables = BuildTables();

static_assert(kTables[0][1] == 0x77073096u && kTables[0][128] == 0xEDB88320u);

[[gnu::always_inline]] inline Yr::UInt32 LoadLittleEndian32(const unsigned char* bytes) {
    Yr::UInt32 word;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = (word >> 24) | ((word >> 8) & 0xFF00u) | ((word << 8) & 0xFF0000u) | (word << 24);
    return word;
}

// One 16-byte step: the running crc folds into the first word, and every byte
// is carried forward by the table of its distance from the end of the step.
[[gnu::always_inline]] inline Yr::UInt32 Step16(Yr::UInt32 crc, const unsigned char* bytes) {
    const Yr::UInt32 w0 = LoadLittleEndian32(bytes) ^ crc;
    const Yr::UInt32 w1 = LoadLittleEndian32(bytes + 4);
    const Yr::UInt32 w2 = LoadLittleEndian32(bytes + 8);
    const Yr::UInt32 w3 = LoadLittleEndian32(bytes + 12);
    // The last three words do not depend on crc: sum them first so only the
    // w0 lookups sit on the loop-carried chain.
    const Yr::UInt32 rest = (kTables[11][w1 & 0xFF] ^ kTables[10][(w1 >> 8) & 0xFF] ^
                             kTables[9][(w1 >> 16) & 0xFF] ^ kTables[8][w1 >> 24]) ^
                            (kTables[7][w2 & 0xFF] ^ kTables[6][(w2 >> 8) & 0xFF] ^
                             kTables[5][(w2 >> 16) & 0xFF] ^ kTables[4][w2 >> 24]) ^
                            (kTables[3][w3 & 0xFF] ^ kTables[2][(w3 >> 8) & 0xFF] ^
                             kTables[1][(w3 >> 16) & 0xFF] ^ kTables[0][w3 >> 24]);
    return rest ^ (kTables[15][w0 & 0xFF] ^ kTables[14][(w0 >> 8) & 0xFF]) ^
           (kTables[13][(w0 >> 16) & 0xFF] ^ kTables[12][w0 >> 24]);
}

}  // namespace

void CRC32::Update(const char* data, Yr::UInt32 size) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    Yr::UInt32 crc = ~m_value;
    for (; size >= 64; size -= 64, bytes += 64) {
        crc = Step16(crc, bytes);
        crc = Step16(crc, bytes + 16);
        crc = Step16(crc, bytes + 32);
        crc = Step16(crc, bytes + 48);
    }
    for (; size > 0; --size, ++bytes) crc = kTables[0][(crc ^ *bytes) & 0xFFu] ^ (crc >> 8);
    m_value = ~crc;
}

}  // namespace Morvelan::Common::IO
