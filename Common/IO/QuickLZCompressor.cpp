#include "Common/IO/QuickLZCompressor.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "Common/IO/QuickLZBlockFormat.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryBlock.h"

namespace Morvelan::Common::IO {
namespace {

using namespace QuickLZBlockFormat;

constexpr const char* kSourceUnit = "Common/IO/QuickLZCompressor";
constexpr Yr::UInt32 kLevel = 1;

// The bytes at `position` are cached beside it, so most failed candidates
// are rejected without touching the old data. Position 0 means empty.
struct HashEntry {
    Yr::UInt32 bytes;
    Yr::UInt32 position;
};

// Whether the seven bytes at `bytes` are all the same.
[[gnu::always_inline]] inline bool IsSevenByteRun(const Byte* bytes) {
    const Yr::UInt64 word = Load64(bytes);
    return ((word ^ (word >> 8)) & 0xFFFFFFFFFFFFull) == 0;
}

// How far the bytes at `here` repeat those at `source`, up to `limit`, once
// the first three are known to. `fourthDiffers` comes from the cached bytes.
[[gnu::always_inline]] inline Yr::UInt32 MatchLength(const Byte* source, const Byte* here,
                                                     Yr::UInt32 limit, bool fourthDiffers) {
    if (fourthDiffers) return kMinMatch;
    Yr::UInt32 length = kMinMatch + 1;
    for (; length + 8 <= limit; length += 8) {
        const Yr::UInt64 difference = Load64(source + length) ^ Load64(here + length);
        if (difference != 0)
            return length + static_cast<Yr::UInt32>(std::countr_zero(difference)) / 8;
    }
    while (length < limit && source[length] == here[length]) ++length;
    return length;
}

// Compresses window[start, end) into `body`, which has room for the worst
// case. Table positions are window indexes plus `bias`. With a bias of 0,
// position 0 looks empty and is never a match source: blocks without a
// streaming buffer must come out that way to equal the established output
// byte for byte. Returns the body size, or 0 when the block does not
// compress and must be stored.
Yr::UInt32 CompressBody(HashEntry* table, const Byte* window, Yr::UInt32 start, Yr::UInt32 end,
                        Yr::UInt32 bias, Byte* body) {
    const Yr::UInt32 size = end - start;
    Byte* controlSlot = body;
    Byte* out = body + 4;
    // Flags enter at bit 31; the marker reaches bit 0 when the word is full.
    Yr::UInt32 control = kControlMarker;
    Yr::UInt32 literals = 0;
    Yr::UInt32 at = start;
    const auto flushControl = [&] {
        Store32(controlSlot, (control >> 1) | kControlMarker);
        controlSlot = out;
        out += 4;
        control = kControlMarker;
    };

    const Yr::UInt32 matchEnd = size > kMatchFreeTail ? end - kMatchFreeTail : start;
    while (at < matchEnd) {
        if (control & 1) {
            const Yr::UInt32 consumed = at - start;
            const auto produced = static_cast<Yr::UInt32>(out - body);
            if (consumed > size / 2 && produced > consumed - consumed / 32) return 0;
            flushControl();
        }
        const Yr::UInt32 bytes = Load32(window + at);
        const Yr::UInt32 hash = Level1Hash(bytes);
        const HashEntry candidate = table[hash];
        table[hash] = {bytes, at + bias};
        const Yr::UInt32 difference = candidate.bytes ^ bytes;
        if ((difference & 0xFFFFFF) == 0 && candidate.position != 0) {
            const Yr::UInt32 distance = at + bias - candidate.position;
            // Distance 1 works only in a run whose decoder-side bucket still
            // holds the position three back.
            if (distance >= 3 || (distance == 1 && literals >= 3 && at - start >= 4 &&
                                  IsSevenByteRun(window + at - 3))) {
                const Yr::UInt32 limit = std::min(kMaxMatch, end - at - kFinalLiterals);
                const Yr::UInt32 length =
                    MatchLength(window + at - distance, window + at, limit, difference != 0);
                if (length <= kLevel1ShortMatchMax) {
                    Store16(out, hash << 4 | (length - 2));
                    out += 2;
                } else {
                    Store16(out, hash << 4);
                    out[2] = static_cast<Byte>(length);
                    out += 3;
                }
                control = (control >> 1) | kControlMarker;
                at += length;
                literals = 0;
                continue;
            }
        }
        *out++ = window[at++];
        control >>= 1;
        ++literals;
    }
    for (; at < end; ++at) {
        if (control & 1) flushControl();
        // The decoder can hash a position only once the three bytes after it
        // are known, and the last three never are.
        if (at + kFinalLiterals <= end) {
            const Yr::UInt32 bytes = Load32(window + at);
            table[Level1Hash(bytes)] = {bytes, at + bias};
        }
        *out++ = window[at];
        control >>= 1;
    }
    Store32(controlSlot, (control >> (std::countr_zero(control) + 1)) | kControlMarker);
    auto bodySize = static_cast<Yr::UInt32>(out - body);
    if (bodySize < kMinimumBodySize) {
        std::memset(out, 0, kMinimumBodySize - bodySize);
        bodySize = kMinimumBodySize;
    }
    return bodySize;
}

void WriteHeader(Byte* block, bool compressed, Yr::UInt32 bufferCode, Yr::UInt32 blockSize,
                 Yr::UInt32 size) {
    const bool isLong = size >= kLongHeaderFrom;
    block[0] =
        static_cast<Byte>(kMarker | bufferCode << kBufferCodeShift | kLevel << kLevelShift |
                          (isLong ? kLongHeaderFlag : 0) | (compressed ? kCompressedFlag : 0));
    if (isLong) {
        Store32(block + 1, blockSize);
        Store32(block + 5, size);
    } else {
        block[1] = static_cast<Byte>(blockSize);
        block[2] = static_cast<Byte>(size);
    }
}

}  // namespace

struct QuickLZCompressor::State {
    // Through the memory manager, so that a failure throws OutOfMemoryException.
    static void* operator new(std::size_t size) { return Yr::MemoryManager::Allocate(size); }
    static void operator delete(void* state) { Yr::MemoryManager::Free(state); }

    explicit State(Yr::UInt32 streamingBuffer)
        : bufferSize(streamingBuffer),
          bufferCode(BufferCode(streamingBuffer)),
          history(Yr::AllocateMemoryBlock(streamingBuffer)) {
        std::memset(table, 0, sizeof table);
    }

    // Resetting is needed after most blocks; doing it lazily spares the
    // blocks that reset it again before use.
    void ClearTable() {
        if (!tableEmpty) std::memset(table, 0, sizeof table);
        tableEmpty = true;
        clearPending = false;
    }

    HashEntry table[kLevel1Buckets];
    const Yr::UInt32 bufferSize;
    const Yr::UInt32 bufferCode;
    Yr::MemoryBlock history;
    Yr::UInt32 historyUsed = 0;
    bool tableEmpty = true;
    bool clearPending = false;
};

QuickLZCompressor::QuickLZCompressor(Yr::UInt32 streamingBuffer)
    : m_state(new State(streamingBuffer)) {}

QuickLZCompressor::~QuickLZCompressor() = default;

Yr::UInt32 QuickLZCompressor::Compress(const char* data, Yr::UInt32 size, char* block) {
    if (size == 0 || size > std::numeric_limits<Yr::UInt32>::max() - kMaxExpansion)
        throw Yr::IllegalArgumentException("QuickLZ block size out of range.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    State& state = *m_state;
    const auto* input = reinterpret_cast<const Byte*>(data);
    auto* header = reinterpret_cast<Byte*>(block);
    const Yr::UInt32 headerSize = size >= kLongHeaderFrom ? kLongHeaderSize : kShortHeaderSize;
    Byte* body = header + headerSize;

    Yr::UInt32 bodySize;
    const bool fits = Yr::UInt64{state.historyUsed} + size <= state.bufferSize;
    if (fits) {
        // Compressed in place, so that matches may reach into earlier blocks.
        if (state.clearPending) state.ClearTable();
        Byte* window = reinterpret_cast<Byte*>(state.history.get());
        std::memcpy(window + state.historyUsed, input, size);
        state.tableEmpty = false;
        bodySize =
            CompressBody(state.table, window, state.historyUsed, state.historyUsed + size, 1, body);
        state.historyUsed += size;
        // Nothing of a stored block is hashed on the decoder side.
        state.clearPending = bodySize == 0;
    } else {
        state.ClearTable();
        state.tableEmpty = false;
        bodySize = CompressBody(state.table, input, 0, size, state.bufferSize == 0 ? 0 : 1, body);
        state.historyUsed = 0;
        state.clearPending = true;
    }

    if (bodySize == 0) {
        std::memcpy(body, input, size);
        WriteHeader(header, false, state.bufferCode, headerSize + size, size);
        return headerSize + size;
    }
    WriteHeader(header, true, state.bufferCode, headerSize + bodySize, size);
    return headerSize + bodySize;
}

}  // namespace Morvelan::Common::IO
