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
    // Table k carries a byte on through k further zero bytes.
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

// Hides a value from the optimiser, which would otherwise flatten the XOR
// tree below into one long chain and put it on the loop-carried path.
[[gnu::always_inline]] inline Yr::UInt32 Pin(Yr::UInt32 value) {
#if defined(__GNUC__)
    asm("" : "+r"(value));
#endif
    return value;
}

// The twelve lookups of a round that do not depend on the running crc: the
// bytes of words w1, w2 and w3.
[[gnu::always_inline]] inline Yr::UInt32 LookUpTail(const unsigned char* round) {
    const Yr::UInt32 w1 = LoadLittleEndian32(round + 4);
    const Yr::UInt32 w2 = LoadLittleEndian32(round + 8);
    const Yr::UInt32 w3 = LoadLittleEndian32(round + 12);
    return (kTables[11][w1 & 0xFF] ^ kTables[10][(w1 >> 8) & 0xFF] ^ kTables[9][(w1 >> 16) & 0xFF] ^
            kTables[8][w1 >> 24]) ^
           (kTables[7][w2 & 0xFF] ^ kTables[6][(w2 >> 8) & 0xFF] ^ kTables[5][(w2 >> 16) & 0xFF] ^
            kTables[4][w2 >> 24]) ^
           (kTables[3][w3 & 0xFF] ^ kTables[2][(w3 >> 8) & 0xFF] ^ kTables[1][(w3 >> 16) & 0xFF] ^
            kTables[0][w3 >> 24]);
}

// Finishes a round from w0 XOR crc: two XOR levels after the loads instead of
// four, with the slowest index (byte 2, two shifts) entering last.
[[gnu::always_inline]] inline Yr::UInt32 LookUpHead(Yr::UInt32 head, Yr::UInt32 tail) {
    const Yr::UInt32 low = Pin(kTables[15][head & 0xFF] ^ kTables[14][(head >> 8) & 0xFF]);
    const Yr::UInt32 high = Pin(tail ^ kTables[12][head >> 24]);
    return Pin(low ^ high) ^ kTables[13][(head >> 16) & 0xFF];
}

}  // namespace

void CRC32::Update(const char* data, Yr::UInt32 size) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    Yr::UInt32 crc = ~m_value;
    for (; size >= 64; size -= 64, bytes += 64) {
        // Four rounds of 16 bytes. The next round's w0 joins the tail lookups,
        // which do not wait for crc, so the round's result already is the next
        // w0 XOR crc and the chain through crc is only the head lookups.
        Yr::UInt32 head = crc ^ LoadLittleEndian32(bytes);
        head = LookUpHead(head, Pin(LookUpTail(bytes) ^ LoadLittleEndian32(bytes + 16)));
        head = LookUpHead(head, Pin(LookUpTail(bytes + 16) ^ LoadLittleEndian32(bytes + 32)));
        head = LookUpHead(head, Pin(LookUpTail(bytes + 32) ^ LoadLittleEndian32(bytes + 48)));
        crc = LookUpHead(head, Pin(LookUpTail(bytes + 48)));
    }
    for (; size > 0; --size, ++bytes) crc = kTables[0][(crc ^ *bytes) & 0xFFu] ^ (crc >> 8);
    m_value = ~crc;
}

}  // namespace Morvelan::Common::IO
