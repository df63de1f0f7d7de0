#include "Common/IO/CRC32.h"

#include <array>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace Morvelan::Common::IO {
namespace {

using Table = std::array<Yr::UInt32, 256>;
using Tables = std::array<Table, 16>;

constexpr Yr::UInt32 kPolynomial = 0xEDB88320u;
// Below this, setting up the folding costs more than it saves.
constexpr Yr::UInt32 kFoldingThreshold = 128;

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

Yr::UInt32 UpdateByTables(Yr::UInt32 crc, const unsigned char* bytes, std::size_t size) {
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
    return crc;
}

#if defined(__x86_64__)

// Long runs are folded with carry-less multiplication, several times faster
// than tables: 128-bit pieces of the message are moved forward by multiplying
// them with x^n mod P and added to the data there, which keeps the message's
// remainder; the last 128 bits left go through the tables.

constexpr Yr::UInt64 kPolynomialWithTop = 0x104C11DB7u;

constexpr Yr::UInt32 PowerOfXModP(unsigned exponent) {
    Yr::UInt64 value = 1;
    for (unsigned i = 0; i < exponent; ++i) {
        value <<= 1;
        if (value >> 32) value ^= kPolynomialWithTop;
    }
    return static_cast<Yr::UInt32>(value);
}

constexpr Yr::UInt32 Reflect(Yr::UInt32 value) {
    Yr::UInt32 reflected = 0;
    for (int bit = 0; bit < 32; ++bit) reflected |= ((value >> bit) & 1u) << (31 - bit);
    return reflected;
}

// The factor that moves a 64-bit half of a register `distance` bits on, in
// the bit order of this CRC (reflected, hence the shift by one).
constexpr Yr::UInt64 FoldFactor(unsigned exponent) {
    return Yr::UInt64{Reflect(PowerOfXModP(exponent))} << 1;
}

constexpr Yr::UInt64 kFold512Low = FoldFactor(512 + 32);
constexpr Yr::UInt64 kFold512High = FoldFactor(512 - 32);
constexpr Yr::UInt64 kFold128Low = FoldFactor(128 + 32);
constexpr Yr::UInt64 kFold128High = FoldFactor(128 - 32);
static_assert(kFold512Low == 0x154442BD4u && kFold128High == 0x0CCAA009Eu);

[[gnu::target("pclmul,sse2")]] inline __m128i Fold(__m128i value, __m128i factors, __m128i data) {
    const __m128i low = _mm_clmulepi64_si128(value, factors, 0x00);
    const __m128i high = _mm_clmulepi64_si128(value, factors, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), data);
}

[[gnu::target("pclmul,sse2")]] inline __m128i Load(const unsigned char* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// `blocks` 16-byte blocks, at least four.
[[gnu::target("pclmul,sse2")]] Yr::UInt32 UpdateByFolding(Yr::UInt32 crc,
                                                          const unsigned char* bytes,
                                                          std::size_t blocks) {
    // Four lanes, so four multiplications are in flight at once.
    __m128i x0 = _mm_xor_si128(Load(bytes), _mm_cvtsi32_si128(static_cast<int>(crc)));
    __m128i x1 = Load(bytes + 16);
    __m128i x2 = Load(bytes + 32);
    __m128i x3 = Load(bytes + 48);
    bytes += 64;
    blocks -= 4;
    const __m128i by512 = _mm_set_epi64x(static_cast<long long>(kFold512High),
                                         static_cast<long long>(kFold512Low));
    for (; blocks >= 4; blocks -= 4, bytes += 64) {
        x0 = Fold(x0, by512, Load(bytes));
        x1 = Fold(x1, by512, Load(bytes + 16));
        x2 = Fold(x2, by512, Load(bytes + 32));
        x3 = Fold(x3, by512, Load(bytes + 48));
    }
    const __m128i by128 = _mm_set_epi64x(static_cast<long long>(kFold128High),
                                         static_cast<long long>(kFold128Low));
    __m128i x = Fold(Fold(Fold(x0, by128, x1), by128, x2), by128, x3);
    for (; blocks > 0; --blocks, bytes += 16) x = Fold(x, by128, Load(bytes));
    unsigned char rest[16];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(rest), x);
    return UpdateByTables(0, rest, sizeof rest);
}

bool CanFold() {
    static const bool supported = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("pclmul") != 0;
    }();
    return supported;
}

#endif

}  // namespace

void CRC32::Update(const char* data, Yr::UInt32 size) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    Yr::UInt32 crc = ~m_value;
#if defined(__x86_64__)
    if (size >= kFoldingThreshold && CanFold()) {
        const std::size_t blocks = size / 16;
        crc = UpdateByFolding(crc, bytes, blocks);
        bytes += blocks * 16;
        size -= static_cast<Yr::UInt32>(blocks * 16);
    }
#endif
    m_value = ~UpdateByTables(crc, bytes, size);
}

}  // namespace Morvelan::Common::IO
