#include "Common/IO/QuickLZDecompressor.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Common/IO/QuickLZBlockFormat.h"
#include "Yr/CopyBytes.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {
namespace {

using namespace QuickLZBlockFormat;

constexpr const char* kSourceUnit = "Common/IO/QuickLZDecompressor";
// A table slot that no position has entered since the last reset; above
// every real position, so one comparison rejects it.
constexpr Yr::UInt32 kNoPosition = 0xFFFFFFFFu;
constexpr unsigned kSettingsMask = 0x3C;

[[noreturn, gnu::cold]] void Fail(const char* message, Yr::UInt32 line) {
    throw Yr::IOException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

[[noreturn, gnu::cold]] void FailTruncated(Yr::UInt32 line) {
    Fail("Invalid QuickLZ block: the body ends before the data is complete.", line);
}

struct Header {
    Yr::UInt32 size;
    Yr::UInt32 blockSize;
    Yr::UInt32 decompressedSize;
    unsigned level;
    unsigned bufferCode;
    bool compressed;
};

Header ReadHeader(const Byte* block, Yr::UInt32 blockSize) {
    if (blockSize == 0) Fail("Invalid QuickLZ block: it is empty.", __LINE__);
    const unsigned first = block[0];
    if ((first & kMarkerMask) != kMarker)
        Fail("Invalid QuickLZ block: the first byte is not a block header.", __LINE__);
    Header header{};
    header.size = QuickLZDecompressor::GetHeaderSize(block[0]);
    if (blockSize < header.size)
        Fail("Invalid QuickLZ block: it is shorter than its header.", __LINE__);
    header.blockSize = QuickLZDecompressor::GetCompressedSize(reinterpret_cast<const char*>(block));
    header.decompressedSize =
        QuickLZDecompressor::GetDecompressedSize(reinterpret_cast<const char*>(block));
    header.level = (first >> kLevelShift) & 3;
    header.bufferCode = (first >> kBufferCodeShift) & 3;
    header.compressed = (first & kCompressedFlag) != 0;
    if (header.blockSize != blockSize)
        Fail("Invalid QuickLZ block: the size in its header differs from the block's size.",
             __LINE__);
    if (header.level == 0)
        Fail("Invalid QuickLZ block: the compression level is unknown.", __LINE__);
    if (header.bufferCode == kOtherBufferCode)
        Fail("Invalid QuickLZ block: its streaming buffer size is not supported.", __LINE__);
    if (header.decompressedSize == 0)
        Fail("Invalid QuickLZ block: the decompressed size is zero.", __LINE__);
    const Yr::UInt32 bodySize = blockSize - header.size;
    if (!header.compressed && bodySize != header.decompressedSize)
        Fail("Invalid QuickLZ block: a stored body differs from the decompressed size.", __LINE__);
    if (header.compressed && bodySize < kMinimumBodySize)
        Fail("Invalid QuickLZ block: the compressed body is too short.", __LINE__);
    return header;
}

struct Match {
    Yr::UInt32 source;
    Yr::UInt32 length;
};

// The unread part of a compressed body.
struct Cursor {
    const Byte* at;
    const Byte* end;
    Yr::UInt32 Left() const { return static_cast<Yr::UInt32>(end - at); }
};

struct Level1Table {
    void Clear() { std::fill_n(positions, kLevel1Buckets, kNoPosition); }
    Yr::UInt32 positions[kLevel1Buckets];
};

struct Level2Table {
    void Clear() {
        std::fill_n(&positions[0][0], kLevel2Buckets * kLevel2Slots, kNoPosition);
        std::fill_n(counters, kLevel2Buckets, 0);
    }
    Yr::UInt32 positions[kLevel2Buckets][kLevel2Slots];
    // Only the low two bits matter here, so the wrap at 256 does not.
    Yr::UInt8 counters[kLevel2Buckets];
};

[[gnu::always_inline]] inline Match CheckedHashSource(Yr::UInt32 source, Yr::UInt32 position,
                                                      Yr::UInt32 length) {
    if (source >= position)
        Fail("Invalid QuickLZ block: a match refers to an empty hash bucket.", __LINE__);
    return {source, length};
}

class Level1Decoder {
public:
    static constexpr bool kHashes = true;
    explicit Level1Decoder(Level1Table& table) : m_table(table) {}

    Match ReadMatch(Cursor& cursor, Yr::UInt32 position) const {
        if (cursor.Left() < 2) FailTruncated(__LINE__);
        const Yr::UInt32 word = Load16(cursor.at);
        Yr::UInt32 length = (word & 0xF) + 2;
        if ((word & 0xF) == 0) {
            if (cursor.Left() < 3) FailTruncated(__LINE__);
            length = cursor.at[2];
            cursor.at += 3;
        } else {
            cursor.at += 2;
        }
        return CheckedHashSource(m_table.positions[word >> 4], position, length);
    }

    void Insert(Yr::UInt32 bytes, Yr::UInt32 position) const {
        m_table.positions[Level1Hash(bytes)] = position;
    }

private:
    Level1Table& m_table;
};

class Level2Decoder {
public:
    static constexpr bool kHashes = true;
    explicit Level2Decoder(Level2Table& table) : m_table(table) {}

    Match ReadMatch(Cursor& cursor, Yr::UInt32 position) const {
        if (cursor.Left() < 2) FailTruncated(__LINE__);
        const Yr::UInt32 word = Load16(cursor.at);
        const Yr::UInt32 shortLength = (word >> 2) & 7;
        Yr::UInt32 length = shortLength + 2;
        if (shortLength == 0) {
            if (cursor.Left() < 3) FailTruncated(__LINE__);
            length = cursor.at[2];
            cursor.at += 3;
        } else {
            cursor.at += 2;
        }
        return CheckedHashSource(m_table.positions[word >> 5][word & 3], position, length);
    }

    void Insert(Yr::UInt32 bytes, Yr::UInt32 position) const {
        const Yr::UInt32 hash = Level2Hash(bytes);
        m_table.positions[hash][m_table.counters[hash]++ & (kLevel2Slots - 1)] = position;
    }

private:
    Level2Table& m_table;
};

class Level3Decoder {
public:
    static constexpr bool kHashes = false;

    static Match ReadMatch(Cursor& cursor, Yr::UInt32 position) {
        const Yr::UInt32 left = cursor.Left();
        if (left == 0) FailTruncated(__LINE__);
        const Yr::UInt32 word = left >= 4 ? Load32(cursor.at) : LoadShort(cursor.at, left);
        Yr::UInt32 distance, length, size;
        if ((word & 3) == 0) {
            distance = (word & 0xFF) >> 2, length = 3, size = 1;
        } else if ((word & 3) == 1) {
            distance = (word & 0xFFFF) >> 2, length = 3, size = 2;
        } else if ((word & 3) == 2) {
            distance = (word & 0xFFFF) >> 6, length = ((word >> 2) & 15) + 3, size = 2;
        } else if ((word & 0x7F) != 3) {
            distance = (word >> 7) & 0x1FFFF, length = ((word >> 2) & 31) + 2, size = 3;
        } else {
            distance = word >> 15, length = ((word >> 7) & 255) + 3, size = 4;
        }
        if (size > left) FailTruncated(__LINE__);
        cursor.at += size;
        if (distance < kMinMatch)
            Fail("Invalid QuickLZ block: a match distance is below 3 bytes.", __LINE__);
        if (distance > position)
            Fail("Invalid QuickLZ block: match refers before the start of the data.", __LINE__);
        return {position - distance, length};
    }

    static void Insert(Yr::UInt32, Yr::UInt32) {}

private:
    static Yr::UInt32 LoadShort(const Byte* bytes, Yr::UInt32 count) {
        Yr::UInt32 word = 0;
        for (Yr::UInt32 i = 0; i < count; ++i) word |= Yr::UInt32{bytes[i]} << (8 * i);
        return word;
    }
};

[[gnu::always_inline]] inline void CopyWord(Byte* to, const Byte* from) {
    std::memcpy(to, from, 8);
}

// Copies in whole words between places at least 8 bytes apart. The last word
// may `spill` up to 7 bytes past `length`; if not, it is moved back to end
// exactly there, which needs `length` >= 8.
[[gnu::always_inline]] inline void CopyWords(Byte* to, const Byte* from, Yr::UInt32 length,
                                             bool spill) {
    Yr::UInt32 done = 0;
    for (; done + 8 <= length; done += 8) CopyWord(to + done, from + done);
    if (done == length) return;
    if (spill)
        CopyWord(to + done, from + done);
    else
        CopyWord(to + length - 8, from + length - 8);
}

// The effect must be that of a byte by byte copy, so that an overlapping match
// repeats its pattern. Bytes spilled past the match but before `end` are
// harmless: later items overwrite them before anything reads them.
[[gnu::always_inline]] inline void CopyMatch(Byte* data, Yr::UInt32 source, Yr::UInt32 target,
                                             Yr::UInt32 length, Yr::UInt32 end) {
    Byte* to = data + target;
    const Byte* from = data + source;
    const Yr::UInt32 distance = target - source;
    const Yr::UInt32 room = end - target;
    const bool spill = room >= length + 7;
    if (distance >= 8 && length <= 16 && room >= 16) {
        // Most matches: two fixed words, no loop to mispredict.
        CopyWord(to, from);
        CopyWord(to + 8, from + 8);
        return;
    }
    if (distance >= 8 && (spill || length >= 8)) return CopyWords(to, from, length, spill);
    if (length >= 16) {
        // A pattern that repeats every `distance` bytes repeats every multiple
        // of it too; once one of at least 8 bytes back is there, words work.
        const Yr::UInt32 wide = (8 + distance - 1) / distance * distance;
        const Yr::UInt32 head = wide - distance;
        for (Yr::UInt32 i = 0; i < head; ++i) to[i] = from[i];
        return CopyWords(to + head, to + head - wide, length - head, spill);
    }
    for (Yr::UInt32 i = 0; i < length; ++i) to[i] = from[i];
}

// Two fixed words where there is room to spill, as most runs are short.
[[gnu::always_inline]] inline void CopyLiterals(Byte* to, const Byte* from, Yr::UInt32 count,
                                                bool spill) {
    if (spill && count <= 16) {
        CopyWord(to, from);
        CopyWord(to + 8, from + 8);
        return;
    }
    Yr::CopyBytes(reinterpret_cast<char*>(to), reinterpret_cast<const char*>(from), count);
}

// Decodes the items of `cursor` into data[start, end). Sources may lie
// anywhere before the current position, also before `start` (history).
template <class Decoder>
const Byte* DecodeItems(const Decoder& decoder, Cursor cursor, Byte* data, Yr::UInt32 start,
                        Yr::UInt32 end) {
    // The decoder must hash the same positions, at the same moments, as the
    // compressor did: item starts, each once its three bytes are known, and
    // never the last three positions of a block.
    Yr::UInt32 unhashed = start;
    const Yr::UInt32 hashEnd = end - start > 3 ? end - 3 : start;
    const auto hashUpTo = [&](Yr::UInt32 stop) {
        for (; unhashed < stop; ++unhashed) decoder.Insert(Load32(data + unhashed), unhashed);
    };

    Yr::UInt32 position = start;
    Yr::UInt32 control = 1;
    while (position < end) {
        if (control == 1) {
            if (cursor.Left() < 4) FailTruncated(__LINE__);
            control = Load32(cursor.at);
            cursor.at += 4;
            if (!(control & kControlMarker))
                Fail("Invalid QuickLZ block: a control word lacks its end marker.", __LINE__);
        }
        if (control & 1) {
            control >>= 1;
            const Match match = decoder.ReadMatch(cursor, position);
            if (match.length < kMinMatch)
                Fail("Invalid QuickLZ block: a match is shorter than 3 bytes.", __LINE__);
            if (match.length > end - position)
                Fail("Invalid QuickLZ block: a match runs past the end of the data.", __LINE__);
            // The match starts with its source's bytes; read there, before
            // the copy, the hash need not wait for the copy's stores.
            Yr::UInt32 head = 0;
            if constexpr (Decoder::kHashes) head = Load32(data + match.source);
            CopyMatch(data, match.source, position, match.length, end);
            if constexpr (Decoder::kHashes) {
                hashUpTo(std::min(position, hashEnd));
                if (position < hashEnd) decoder.Insert(head, position);
                unhashed = position + match.length;
            }
            position += match.length;
        } else {
            // All literals up to the next match flag (or the marker) at once.
            const auto run =
                std::min(static_cast<Yr::UInt32>(std::countr_zero(control)), end - position);
            if (cursor.Left() < run) FailTruncated(__LINE__);
            const Byte* literals = cursor.at;
            CopyLiterals(data + position, literals, run,
                         cursor.Left() >= 16 && end - position >= 16);
            cursor.at += run;
            const Yr::UInt32 runStart = position;
            position += run;
            control >>= run;
            if constexpr (Decoder::kHashes) {
                const Yr::UInt32 stop = std::min(position - std::min(position, 2u), hashEnd);
                hashUpTo(std::min(runStart, stop));
                // Inside the run, hash from the body for the same reason; the
                // load takes one byte past the run, so not at the body's end.
                if (cursor.Left() == 0) hashUpTo(stop);
                for (; unhashed < stop; ++unhashed)
                    decoder.Insert(Load32(literals + (unhashed - runStart)), unhashed);
            }
        }
    }
    if constexpr (Decoder::kHashes) hashUpTo(hashEnd);
    return cursor.at;
}

}  // namespace

struct QuickLZDecompressor::State {
    // Through the memory manager, so that a failure throws OutOfMemoryException.
    static void* operator new(std::size_t size) { return Yr::MemoryManager::Allocate(size); }
    static void operator delete(void* state) { Yr::MemoryManager::Free(state); }

    State() {
        level1.Clear();
        level2.Clear();
    }

    // Lazily: many blocks clear it both before and after.
    void ClearTable(unsigned level) {
        if (!tableClean && level == 1) level1.Clear();
        if (!tableClean && level == 2) level2.Clear();
        tableClean = true;
        clearPending = false;
    }

    void DecodeBody(const Header& header, const Byte* body, Byte* data, Yr::UInt32 start);
    void Decode(const Header& header, const Byte* body, Byte* output);

    Level1Table level1;
    Level2Table level2;
    Yr::MemoryBlock history;
    Yr::UInt32 historyUsed = 0;
    // The level and buffer bits of the stream's first block; -1 before it.
    int settings = -1;
    // Set while a block is decoded, so that one that failed halfway, and
    // left the history and table half updated, stops the stream.
    bool broken = false;
    bool tableClean = true;
    bool clearPending = false;
};

void QuickLZDecompressor::State::DecodeBody(const Header& header, const Byte* body, Byte* data,
                                            Yr::UInt32 start) {
    const Yr::UInt32 end = start + header.decompressedSize;
    if (!header.compressed) {
        std::memcpy(data + start, body, header.decompressedSize);
        return;
    }
    const Cursor cursor{body, body + (header.blockSize - header.size)};
    const Byte* last;
    if (header.level == 1) {
        tableClean = false;
        last = DecodeItems(Level1Decoder(level1), cursor, data, start, end);
    } else if (header.level == 2) {
        tableClean = false;
        last = DecodeItems(Level2Decoder(level2), cursor, data, start, end);
    } else {
        last = DecodeItems(Level3Decoder(), cursor, data, start, end);
    }
    // Short bodies are padded; anything else left over is damage.
    const auto used = static_cast<Yr::UInt32>(last - body);
    if (cursor.Left() != std::max(used, kMinimumBodySize))
        Fail("Invalid QuickLZ block: bytes follow its last item.", __LINE__);
}

void QuickLZDecompressor::State::Decode(const Header& header, const Byte* body, Byte* output) {
    const Yr::UInt32 size = header.decompressedSize;
    const Yr::UInt32 bufferSize = kBufferSizes[header.bufferCode];
    if (Yr::UInt64{historyUsed} + size <= bufferSize) {
        // Decoded in the history, where later blocks can refer to it.
        if (clearPending) ClearTable(header.level);
        auto* window = reinterpret_cast<Byte*>(history.get());
        DecodeBody(header, body, window, historyUsed);
        std::memcpy(output, window + historyUsed, size);
        historyUsed += size;
        // The compressor forgets everything before a stored block.
        clearPending = !header.compressed;
        return;
    }
    ClearTable(header.level);
    DecodeBody(header, body, output, 0);
    historyUsed = 0;
    clearPending = true;
}

Yr::UInt32 QuickLZDecompressor::GetHeaderSize(char firstByte) {
    return (static_cast<unsigned char>(firstByte) & kLongHeaderFlag) ? kLongHeaderSize
                                                                     : kShortHeaderSize;
}

Yr::UInt32 QuickLZDecompressor::GetCompressedSize(const char* header) {
    const auto* bytes = reinterpret_cast<const Byte*>(header);
    return GetHeaderSize(header[0]) == kLongHeaderSize ? Load32(bytes + 1) : bytes[1];
}

Yr::UInt32 QuickLZDecompressor::GetDecompressedSize(const char* header) {
    const auto* bytes = reinterpret_cast<const Byte*>(header);
    return GetHeaderSize(header[0]) == kLongHeaderSize ? Load32(bytes + 5) : bytes[2];
}

QuickLZDecompressor::QuickLZDecompressor() : m_state(new State) {}

QuickLZDecompressor::~QuickLZDecompressor() = default;

Yr::UInt32 QuickLZDecompressor::Decompress(const char* block, Yr::UInt32 blockSize, char* output,
                                           Yr::UInt32 capacity) {
    State& state = *m_state;
    if (state.broken)
        Fail("Invalid QuickLZ block: an earlier damaged block broke the stream.", __LINE__);
    const auto* bytes = reinterpret_cast<const Byte*>(block);
    const Header header = ReadHeader(bytes, blockSize);
    if (header.decompressedSize > capacity)
        Fail("Invalid QuickLZ block: the decompressed size exceeds the output capacity.", __LINE__);
    const int settings = bytes[0] & kSettingsMask;
    if (state.settings >= 0 && settings != state.settings)
        Fail("Invalid QuickLZ block: its level or streaming buffer differs from the stream's.",
             __LINE__);
    state.settings = settings;
    const Yr::UInt32 bufferSize = kBufferSizes[header.bufferCode];
    if (bufferSize != 0 && !state.history) state.history = Yr::AllocateMemoryBlock(bufferSize);
    state.broken = true;
    state.Decode(header, bytes + header.size, reinterpret_cast<Byte*>(output));
    state.broken = false;
    return header.decompressedSize;
}

}  // namespace Morvelan::Common::IO
