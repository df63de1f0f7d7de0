// Reads the input as a ZIP stream: every entry, its data in odd-sized
// pieces, sometimes in full, sometimes only a little or not at all, so that
// leaving an entry has to drain and check it; then the central directory.
// Damaged archives may only be refused with an exception of the library's
// family.
//
// The same bytes are first read plainly, every entry in full in large pieces.
// How the data is read must not change what comes out: an entry the steered
// reading accepts must have been accepted by the plain one, with the same
// sizes and CRC-32.
//
// The first input byte steers the reader, the rest is the archive:
//   bits 0-1  where the cycle of piece sizes starts;
//   bit 2     the input hands out one byte per read, as a slow pipe does;
//   bit 3     go on after a refused entry (a few times);
//   bits 4-7  what is done with each entry's data, two bits per entry in turn.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Common/IO/ZipIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/YrException.h"
#include "tests/support/OneByteIBinaryChannel.h"

namespace {

using Morvelan::Common::IO::ZipEntry;
using Morvelan::Common::IO::ZipIBinaryChannel;

// Odd sizes, one above the inflater's 65536-byte input buffer.
constexpr Yr::UInt32 kPieceSizes[] = {1, 3, 509, 4093, 65537};
constexpr std::size_t kPieceSizeCount = sizeof kPieceSizes / sizeof kPieceSizes[0];
constexpr int kMaxRetries = 3;
constexpr unsigned kMaxEntries = 16;
// A small input may inflate to gigabytes; past this an entry teaches nothing.
constexpr Yr::UInt64 kMaxEntryBytes = 64 << 20;

char g_buffer[65537];

void Check(bool condition) {
    if (!condition) __builtin_trap();
}

struct Checked {
    Yr::UInt64 size;
    Yr::UInt64 compressedSize;
    Yr::UInt32 crc;
};

// Reads the current entry's data up to `pieces` pieces; the bytes read.
Yr::UInt64 ReadPieces(ZipIBinaryChannel& zip, Yr::UInt64 pieces, std::size_t& piece) {
    Yr::UInt64 total = 0;
    for (; pieces > 0 && total < kMaxEntryBytes; --pieces) {
        const Yr::UInt32 size = kPieceSizes[piece++ % kPieceSizeCount];
        zip.GetAvailable();
        const Yr::UInt32 count = zip.Read(g_buffer, size, Yr::kReadSome);
        Check(count <= size);
        if (count == 0) break;
        total += count;
    }
    return total;
}

// The entries the plain reading accepts, in order, up to its first refusal.
std::vector<Checked> ReadPlainly(const char* data, Yr::UInt32 size) {
    std::vector<Checked> accepted;
    Yr::MemoryIBinaryChannel source(data, size);
    ZipIBinaryChannel zip(source);
    try {
        while (accepted.size() < kMaxEntries) {
            const Yr::Ref<ZipEntry> entry = zip.GetNextEntry();
            if (!entry) break;
            Yr::UInt64 total = 0;
            while (const Yr::UInt32 count = zip.Read(g_buffer, sizeof g_buffer, Yr::kReadSome))
                if ((total += count) >= kMaxEntryBytes) return accepted;
            zip.CloseEntry();
            accepted.push_back({entry->GetSize(), entry->GetCompressedSize(), entry->GetCrc()});
        }
    } catch (const Yr::YrException&) {
    }
    return accepted;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1 || size > 0x7FFFFFFF) return 0;
    const std::uint8_t options = data[0];
    const char* bytes = reinterpret_cast<const char*>(data + 1);
    const auto byteCount = static_cast<Yr::UInt32>(size - 1);
    const std::vector<Checked> plain = ReadPlainly(bytes, byteCount);

    Yr::MemoryIBinaryChannel memory(bytes, byteCount);
    Morvelan::Testing::OneByteIBinaryChannel trickle(std::string(bytes, byteCount));
    Yr::IBinaryChannel& source =
        (options & 4u) != 0 ? static_cast<Yr::IBinaryChannel&>(trickle) : memory;
    ZipIBinaryChannel zip(source);
    std::size_t piece = options & 3u;
    unsigned index = 0;
    bool comparing = true;
    for (int retries = (options & 8u) != 0 ? kMaxRetries : 0; retries >= 0; --retries) {
        try {
            while (index < kMaxEntries) {
                const Yr::Ref<ZipEntry> entry = zip.GetNextEntry();
                if (!entry) {
                    zip.GetComment();
                    Check(zip.Read(g_buffer, 1, Yr::kReadSome) == 0);
                    break;
                }
                Check(!entry->GetName().IsEmpty());
                const unsigned action = (options >> (4 + 2 * (index++ % 2))) & 3u;
                if (action == 2) ReadPieces(zip, 2, piece);
                // Leaving drains the entry, which is bounded only where the
                // plain reading got through it.
                const bool drainable = comparing && index - 1 < plain.size();
                if ((action < 2 || !drainable) &&
                    ReadPieces(zip, UINT64_MAX, piece) >= kMaxEntryBytes)
                    return 0;
                zip.CloseEntry();
                if (!comparing) continue;
                Check(index - 1 < plain.size());
                const Checked& expected = plain[index - 1];
                Check(entry->GetSize() == expected.size && entry->GetCrc() == expected.crc &&
                      entry->GetCompressedSize() == expected.compressedSize);
            }
            break;
        } catch (const Yr::YrException&) {
            // After a refusal the two readings no longer stand at the same entry.
            comparing = false;
        }
    }
    zip.Close();
    return 0;
}
