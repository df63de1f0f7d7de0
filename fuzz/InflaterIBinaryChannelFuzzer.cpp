// Decompresses the input as a deflate stream. The first byte chooses: bit 0 a
// raw or a zlib-wrapped stream, bit 1 the channel or the Inflater driven
// directly, the rest the size of the input buffer (and the channel's reads).
// Output is thrown away after counting and stops at kOutputLimit, so that a
// stream that expands enormously cannot exhaust memory or time.
//
// Corrupt input may be refused only with Yr::YrException; a broken invariant
// of the classes aborts.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Common/IO/Inflater.h"
#include "Common/IO/InflaterIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/YrException.h"

namespace {

namespace IO = Morvelan::Common::IO;

constexpr Yr::UInt64 kOutputLimit = 16u << 20;
constexpr Yr::UInt32 kBufferSizes[] = {1, 2, 3, 7, 16, 100, 1024, 4096};

char g_output[65536];

void Check(bool condition) {
    if (!condition) std::abort();
}

void ReadChannel(const char* data, Yr::UInt32 size, Yr::UInt32 bufferSize, bool nowrap) {
    Yr::MemoryIBinaryChannel in(data, size);
    IO::InflaterIBinaryChannel channel(in, bufferSize, nowrap);
    const Yr::UInt32 readSize = bufferSize * 3 % sizeof g_output + 1;
    for (Yr::UInt64 total = 0; total < kOutputLimit;) {
        channel.GetAvailable();
        const Yr::UInt32 count = channel.Read(g_output, readSize, Yr::kReadSome);
        Check(count <= readSize);
        if (count == 0) {
            // The end stays the end.
            Check(channel.Read(g_output, readSize, Yr::kReadSome) == 0);
            Check(channel.GetAvailable() == 0);
            return;
        }
        total += count;
    }
}

// Inflates what input there is; true once the stream has ended or the
// output limit is reached.
bool Drain(IO::Inflater& inflater, Yr::UInt64& total) {
    while (total < kOutputLimit) {
        const Yr::UInt32 count = inflater.Inflate(g_output, sizeof g_output);
        Check(count <= sizeof g_output);
        total += count;
        Check(inflater.GetTotalOutputCount() == total);
        if (count > 0) continue;
        if (inflater.IsFinished()) return true;
        if (inflater.NeedsDictionary()) {
            inflater.SetDictionary("dictionary", 10);
            continue;
        }
        // Stalling with input left would hang the channel.
        Check(inflater.NeedsInput());
        return false;
    }
    return true;
}

void DriveInflater(const char* data, Yr::UInt32 size, Yr::UInt32 pieceSize, bool nowrap) {
    IO::Inflater inflater(nowrap);
    Yr::UInt64 total = 0;
    for (Yr::UInt32 at = 0; at < size && total < kOutputLimit;) {
        const Yr::UInt32 piece = std::min(pieceSize, size - at);
        inflater.SetInput(data + at, piece);
        at += piece;
        if (Drain(inflater, total)) break;
    }
    const Yr::UInt32 remaining = inflater.GetRemainingCount();
    Check(remaining <= pieceSize);
    char copy[8];
    Check(inflater.GetRemainingInput(copy, sizeof copy) == remaining);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > 0x7FFFFFFF) return 0;
    const bool nowrap = data[0] & 1;
    const bool direct = data[0] & 2;
    const Yr::UInt32 bufferSize = kBufferSizes[(data[0] >> 2) % std::size(kBufferSizes)];
    const char* stream = reinterpret_cast<const char*>(data + 1);
    const auto length = static_cast<Yr::UInt32>(size - 1);
    try {
        if (direct)
            DriveInflater(stream, length, bufferSize, nowrap);
        else
            ReadChannel(stream, length, bufferSize, nowrap);
    } catch (const Yr::YrException&) {
        // Corrupt or cut-short streams are refused with an exception.
    }
    return 0;
}
