// Reads the input as an archive stream: the archive header, then every entry,
// its data in odd-sized pieces, sometimes in full, sometimes only a little or
// not at all, so that leaving an entry has to drain and check it. Damaged
// archives may only be refused with an exception of the library's family.
//
// The same bytes are first read plainly, every entry in full in large pieces.
// How the data is read must not change what comes out: an entry the steered
// reading accepts must have been accepted by the plain one, with the same size
// and CRC-32.
//
// The first input byte steers the reader, the rest is the archive:
//   bits 0-1  where the cycle of piece sizes starts;
//   bit 2     peek at every record before opening it;
//   bit 3     go on after a refused entry (a few times), so that a reader left
//             inside a damaged stream is driven further;
//   bits 4-7  what is done with each entry's data, two bits per entry in turn.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/YrException.h"

namespace {

using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveIBinaryChannel;

// Odd sizes, one above the entry buffer's 65536 bytes so that large reads go
// past the buffer as well.
constexpr Yr::UInt32 kPieceSizes[] = {1, 3, 509, 4093, 65537};
constexpr std::size_t kPieceSizeCount = sizeof kPieceSizes / sizeof kPieceSizes[0];
constexpr int kMaxRetries = 3;
// Past this many entries an input teaches nothing new, and under ASan each
// QuickLZ entry declaring the largest packets (64 MiB) costs a tenth of a
// second in shadow memory alone.
constexpr unsigned kMaxEntries = 16;

char g_buffer[65537];

// What the reader claims must hold, damaged input or not.
void Check(bool condition) {
    if (!condition) __builtin_trap();
}

struct Checked {
    Yr::UInt64 size;
    Yr::UInt32 crc;
};

// The entries the plain reading accepts, in order, up to its first refusal.
std::vector<Checked> ReadPlainly(const char* data, Yr::UInt32 size) {
    std::vector<Checked> accepted;
    Yr::MemoryIBinaryChannel source(data, size);
    ArchiveIBinaryChannel archive(source);
    try {
        while (accepted.size() < kMaxEntries) {
            const Yr::Ref<ArchiveEntry> entry = archive.GetNextEntry();
            if (!entry) break;
            while (archive.Read(g_buffer, sizeof g_buffer, Yr::kReadSome) != 0) {
            }
            archive.CloseEntry();
            accepted.push_back({entry->GetSize(), entry->GetCrc()});
        }
    } catch (const Yr::YrException&) {
    }
    return accepted;
}

void TouchEntry(const ArchiveEntry& entry) {
    Check(!entry.GetName().IsEmpty());
    const auto method = entry.GetMethod();
    Check(method == ArchiveEntry::Deflated || method == ArchiveEntry::Stored ||
          method == ArchiveEntry::QuickLZ);
    Check(entry.GetHeaderCount() == entry.EnumerateHeaders().GetCount());
    for (const auto& [name, value] : entry.EnumerateHeaders()) {
        Yr::UniString found;
        Check(entry.GetHeader(name, found) && found == value);
    }
}

class Driver {
public:
    Driver(ArchiveIBinaryChannel& archive, std::uint8_t options, std::vector<Checked> plain)
        : m_archive(archive),
          m_options(options),
          m_piece(options & 3u),
          m_plain(std::move(plain)) {}

    void ReadArchiveHeader() {
        m_archive.GetReservedHeaderSize();
        Check(m_archive.GetHeaderCount() == m_archive.EnumerateHeaders().GetCount());
        for (const auto& [name, value] : m_archive.EnumerateHeaders()) {
            Yr::UniString found;
            Check(m_archive.GetHeader(name, found) && found == value);
        }
        m_archive.GetHeader("a");
    }

    // False at the end of the archive, or past kMaxEntries.
    bool ReadEntry() {
        if (m_index >= kMaxEntries) return false;
        Yr::Ref<ArchiveEntry> peeked;
        if ((m_options & 4u) != 0) {
            peeked = m_archive.PeekNextEntry();
            CompareLeft();
            Check(!m_archive.HasCurrentEntry());
            // A second look must not read another record.
            Check(m_archive.PeekNextEntry() == peeked);
        }
        const Yr::Ref<ArchiveEntry> entry = m_archive.GetNextEntry();
        CompareLeft();
        if ((m_options & 4u) != 0) Check(entry == peeked);
        if (!entry) {
            Check(!m_archive.HasCurrentEntry());
            return false;
        }
        Check(m_archive.HasCurrentEntry() && !entry->IsClosed());
        TouchEntry(*entry);
        m_current = entry;

        const unsigned action = (m_options >> (4 + 2 * (m_index++ % 2))) & 3u;
        switch (action) {
            case 0:  // everything, then left by the next GetNextEntry
                ReadPieces(UINT64_MAX);
                break;
            case 1: {  // everything, then closed here: the sizes must agree
                const Yr::UInt64 size = ReadPieces(UINT64_MAX);
                m_archive.CloseEntry();
                CompareLeft();
                Check(!m_archive.HasCurrentEntry() && entry->IsClosed());
                Check(entry->GetSize() == size);
                Check(m_archive.Read(g_buffer, 1, Yr::kReadSome) == 0);
                Check(m_archive.GetAvailable() == 0);
                break;
            }
            case 2:  // a little, the rest drained by the next GetNextEntry
                ReadPieces(2);
                break;
            default:  // nothing, drained by CloseEntry
                m_archive.CloseEntry();
                CompareLeft();
                Check(entry->IsClosed());
                break;
        }
        return true;
    }

    // After a refusal the two readings no longer stand at the same entry.
    void Refused() {
        m_current.Reset();
        m_comparing = false;
    }

private:
    // Reads up to `pieces` pieces, fewer at the end of the data; the number of
    // bytes read.
    Yr::UInt64 ReadPieces(Yr::UInt64 pieces) {
        Yr::UInt64 total = 0;
        for (; pieces > 0; --pieces) {
            const Yr::UInt32 size = kPieceSizes[m_piece++ % kPieceSizeCount];
            m_archive.GetAvailable();
            const Yr::UInt32 count = m_archive.Read(g_buffer, size, Yr::kReadSome);
            Check(count <= size);
            if (count == 0) break;
            total += count;
        }
        return total;
    }

    // Called once the reader has left the current entry without complaint.
    void CompareLeft() {
        if (!m_current) return;
        const Yr::Ref<ArchiveEntry> entry = std::move(m_current);
        m_current.Reset();
        Check(entry->IsClosed());
        if (!m_comparing) return;
        const std::size_t index = m_index - 1;
        Check(index < m_plain.size());
        Check(entry->GetSize() == m_plain[index].size && entry->GetCrc() == m_plain[index].crc);
    }

    ArchiveIBinaryChannel& m_archive;
    std::uint8_t m_options;
    std::size_t m_piece;
    std::vector<Checked> m_plain;
    bool m_comparing = true;
    Yr::Ref<ArchiveEntry> m_current;
    unsigned m_index = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1 || size > 0x7FFFFFFF) return 0;
    const std::uint8_t options = data[0];
    const char* bytes = reinterpret_cast<const char*>(data + 1);
    const auto byteCount = static_cast<Yr::UInt32>(size - 1);
    Yr::MemoryIBinaryChannel source(bytes, byteCount);
    ArchiveIBinaryChannel archive(source);
    Driver driver(archive, options, ReadPlainly(bytes, byteCount));
    // Without bit 3 the first refusal ends the input. Retrying is capped: a
    // refusal need not consume anything (a header cut short fails each time).
    for (int retries = (options & 8u) != 0 ? kMaxRetries : 0; retries >= 0; --retries) {
        try {
            driver.ReadArchiveHeader();
            while (driver.ReadEntry()) {
            }
            break;
        } catch (const Yr::YrException&) {
            driver.Refused();
        }
    }
    archive.Close();
    return 0;
}
