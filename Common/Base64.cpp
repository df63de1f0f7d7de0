#include "Common/Base64.h"

#include <array>
#include <cstring>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryManager.h"

namespace Morvelan::Common {
namespace {

constexpr const char* kSourceUnit = "Common/Base64";
constexpr char kStandard[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kUrlSafe[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr unsigned char kInvalid = 0xFF;

// 256 entries so any byte indexes it without a range check.
using ReverseTable = std::array<unsigned char, 256>;

constexpr ReverseTable MakeReverse(const char* alphabet) {
    ReverseTable table{};
    for (auto& entry : table) entry = kInvalid;
    for (unsigned i = 0; i < 64; ++i)
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned char>(i);
    return table;
}

constexpr ReverseTable kStandardReverse = MakeReverse(kStandard);
constexpr ReverseTable kUrlSafeReverse = MakeReverse(kUrlSafe);

[[noreturn]] void Refuse(const char* message, int line) {
    throw Yr::IllegalArgumentException(message, kSourceUnit, static_cast<Yr::UInt32>(line),
                                       Yr::kIllegalArgumentErrorCode);
}

void CheckRaw(const char* source, Yr::UInt32 size, char** target, Yr::UInt32* targetSize) {
    if (source == nullptr) Refuse("Invalid source: source buffer pointer is null.", __LINE__);
    if (size == 0) Refuse("Invalid source: source buffer size is 0.", __LINE__);
    if (target == nullptr && targetSize == nullptr)
        Refuse("Invalid target: target buffer pointer is null and target size pointer is null.",
               __LINE__);
}

// Allocates, converts and hands out the buffer through whichever out-pointers exist.
template <class Convert>
Yr::UInt32 RunRaw(Yr::UInt32 capacity, char** target, Yr::UInt32* targetSize, Convert convert) {
    auto* buffer = static_cast<char*>(Yr::MemoryManager::Allocate(capacity));
    Yr::UInt32 written = 0;
    try {
        written = convert(buffer);
    } catch (...) {
        Yr::MemoryManager::Free(buffer);
        throw;
    }
    if (target != nullptr)
        *target = buffer;
    else
        Yr::MemoryManager::Free(buffer);
    if (targetSize != nullptr) *targetSize = written;
    return written;
}

template <class T>
Yr::UInt32 EncodeBuffer(const Yr::DataBuffer<T>& source, Yr::DataBuffer<T>& target, bool urlSafe) {
    if (source.IsEmpty()) Refuse("Invalid source buffer: buffer is empty.", __LINE__);
    const auto size = static_cast<Yr::UInt32>(source.GetSize());
    target.Resize(Base64::EncodedSize(size, urlSafe));
    return Base64::EncodeInto(reinterpret_cast<const unsigned char*>(source.GetData()), size,
                              reinterpret_cast<char*>(target.GetData()), urlSafe);
}

template <class T>
Yr::UInt32 DecodeBuffer(const Yr::DataBuffer<T>& source, Yr::DataBuffer<T>& target, bool urlSafe) {
    if (source.IsEmpty()) Refuse("Invalid source buffer: buffer is empty.", __LINE__);
    const auto size = static_cast<Yr::UInt32>(source.GetSize());
    target.Resize(Base64::DecodedCapacity(size));
    const Yr::UInt32 written =
        Base64::DecodeInto(reinterpret_cast<const char*>(source.GetData()), size,
                           reinterpret_cast<unsigned char*>(target.GetData()), urlSafe);
    target.Resize(written);
    return written;
}

Yr::UInt32 EncodeRaw(const char* source, Yr::UInt32 size, char** target, Yr::UInt32* targetSize,
                     bool urlSafe) {
    CheckRaw(source, size, target, targetSize);
    return RunRaw(Base64::EncodedSize(size, urlSafe), target, targetSize, [&](char* buffer) {
        return Base64::EncodeInto(reinterpret_cast<const unsigned char*>(source), size, buffer,
                                  urlSafe);
    });
}

Yr::UInt32 DecodeRaw(const char* source, Yr::UInt32 size, char** target, Yr::UInt32* targetSize,
                     bool urlSafe) {
    CheckRaw(source, size, target, targetSize);
    return RunRaw(Base64::DecodedCapacity(size), target, targetSize, [&](char* buffer) {
        return Base64::DecodeInto(source, size, reinterpret_cast<unsigned char*>(buffer), urlSafe);
    });
}

}  // namespace

Yr::UInt32 Base64::EncodedSize(Yr::UInt32 size, bool urlSafe) {
    const Yr::UInt32 full = size / 3 * 4;
    const Yr::UInt32 rest = size % 3;
    if (rest == 0) return full;
    return full + (urlSafe ? rest + 1 : 4);
}

Yr::UInt32 Base64::EncodeInto(const unsigned char* source, Yr::UInt32 size, char* target,
                              bool urlSafe) {
    const char* alphabet = urlSafe ? kUrlSafe : kStandard;
    const unsigned char* end = source + size / 3 * 3;
    char* out = target;
    for (; source != end; source += 3, out += 4) {
        const Yr::UInt32 group =
            (Yr::UInt32{source[0]} << 16) | (Yr::UInt32{source[1]} << 8) | source[2];
        out[0] = alphabet[group >> 18];
        out[1] = alphabet[(group >> 12) & 63];
        out[2] = alphabet[(group >> 6) & 63];
        out[3] = alphabet[group & 63];
    }
    const Yr::UInt32 rest = size % 3;
    if (rest != 0) {
        const Yr::UInt32 group =
            (Yr::UInt32{source[0]} << 16) | (rest == 2 ? Yr::UInt32{source[1]} << 8 : 0);
        *out++ = alphabet[group >> 18];
        *out++ = alphabet[(group >> 12) & 63];
        if (rest == 2) *out++ = alphabet[(group >> 6) & 63];
        if (!urlSafe) {
            if (rest == 1) *out++ = '=';
            *out++ = '=';
        }
    }
    return static_cast<Yr::UInt32>(out - target);
}

Yr::UInt32 Base64::DecodeInto(const char* source, Yr::UInt32 size, unsigned char* target,
                              bool urlSafe) {
    const ReverseTable& reverse = urlSafe ? kUrlSafeReverse : kStandardReverse;
    const auto* in = reinterpret_cast<const unsigned char*>(source);
    // Decoding ends at the first padding character; memchr scans far faster than a loop.
    const void* padding = std::memchr(in, '=', size);
    const Yr::UInt32 length =
        padding == nullptr
            ? size
            : static_cast<Yr::UInt32>(static_cast<const unsigned char*>(padding) - in);
    const unsigned char* end = in + length / 4 * 4;
    unsigned char* out = target;
    for (; in != end; in += 4, out += 3) {
        const unsigned a = reverse[in[0]], b = reverse[in[1]], c = reverse[in[2]],
                       d = reverse[in[3]];
        // One test per group: any invalid entry has the high bits set.
        if ((a | b | c | d) & 0xC0)
            Refuse("Invalid source: character outside the Base64 alphabet.", __LINE__);
        const Yr::UInt32 group = (a << 18) | (b << 12) | (c << 6) | d;
        out[0] = static_cast<unsigned char>(group >> 16);
        out[1] = static_cast<unsigned char>(group >> 8);
        out[2] = static_cast<unsigned char>(group);
    }
    const Yr::UInt32 rest = length % 4;
    if (rest == 1) Refuse("Invalid source: incomplete final group.", __LINE__);
    if (rest != 0) {
        unsigned group = 0;
        for (Yr::UInt32 i = 0; i < rest; ++i) {
            const unsigned value = reverse[in[i]];
            if (value & 0xC0)
                Refuse("Invalid source: character outside the Base64 alphabet.", __LINE__);
            group |= value << (18 - 6 * i);
        }
        *out++ = static_cast<unsigned char>(group >> 16);
        if (rest == 3) *out++ = static_cast<unsigned char>(group >> 8);
    }
    return static_cast<Yr::UInt32>(out - target);
}

Yr::UInt32 Base64::Encode(const char* s, Yr::UInt32 n, char** t, Yr::UInt32* ts) {
    return EncodeRaw(s, n, t, ts, false);
}
Yr::UInt32 Base64::EncodeUrlSafe(const char* s, Yr::UInt32 n, char** t, Yr::UInt32* ts) {
    return EncodeRaw(s, n, t, ts, true);
}
Yr::UInt32 Base64::Decode(const char* s, Yr::UInt32 n, char** t, Yr::UInt32* ts) {
    return DecodeRaw(s, n, t, ts, false);
}
Yr::UInt32 Base64::DecodeUrlSafe(const char* s, Yr::UInt32 n, char** t, Yr::UInt32* ts) {
    return DecodeRaw(s, n, t, ts, true);
}

using Bytes = Yr::DataBuffer<unsigned char>;
using Chars = Yr::DataBuffer<char>;
Yr::UInt32 Base64::Encode(const Bytes& s, Bytes& t) {
    return EncodeBuffer(s, t, false);
}
Yr::UInt32 Base64::EncodeUrlSafe(const Bytes& s, Bytes& t) {
    return EncodeBuffer(s, t, true);
}
Yr::UInt32 Base64::Decode(const Bytes& s, Bytes& t) {
    return DecodeBuffer(s, t, false);
}
Yr::UInt32 Base64::DecodeUrlSafe(const Bytes& s, Bytes& t) {
    return DecodeBuffer(s, t, true);
}
Yr::UInt32 Base64::Encode(const Chars& s, Chars& t) {
    return EncodeBuffer(s, t, false);
}
Yr::UInt32 Base64::EncodeUrlSafe(const Chars& s, Chars& t) {
    return EncodeBuffer(s, t, true);
}
Yr::UInt32 Base64::Decode(const Chars& s, Chars& t) {
    return DecodeBuffer(s, t, false);
}
Yr::UInt32 Base64::DecodeUrlSafe(const Chars& s, Chars& t) {
    return DecodeBuffer(s, t, true);
}

}  // namespace Morvelan::Common
