#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/CRC32.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"

// An entry and an archive past 4 GiB, written and read without holding either:
// the writer's output is only counted and checksummed, and the reader is fed
// an archive built on the fly whose checksum must match the writer's.
namespace {

using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveIBinaryChannel;
using Morvelan::Common::IO::ArchiveOBinaryChannel;
using Morvelan::Common::IO::CRC32;

constexpr Yr::UInt64 kBlockSize = Yr::UInt64{1} << 20;
// A block and an odd tail past 4 GiB, so any size kept in 32 bits shows.
constexpr Yr::UInt64 kBigSize = (Yr::UInt64{4} << 30) + kBlockSize + 4099;
// Stated here rather than taken from ArchiveFormat: it is part of the stream.
constexpr Yr::UInt64 kChunkSize = 262144;
constexpr Yr::UInt64 kFramedChunkSize = 4 + kChunkSize;
// Odd, so that writes and reads straddle every buffer and chunk boundary.
constexpr Yr::UInt32 kPieceSize = (4u << 20) + 17;
const std::string kAfterData = "the entry behind the big one";

// The big entry's data: one block of pseudo-random bytes over and over, each
// copy stamped with its index in its first eight bytes, so that a block out
// of place changes the CRC.
class Pattern {
public:
    Pattern() : m_block(kBlockSize) {
        Yr::UInt32 state = 0x2545F491u;
        for (char& byte : m_block) {
            state = state * 1664525u + 1013904223u;
            byte = static_cast<char>(state >> 24);
        }
    }

    void Fill(Yr::UInt64 offset, char* out, Yr::UInt64 size) const {
        while (size > 0) {
            const Yr::UInt64 index = offset / kBlockSize;
            const Yr::UInt64 at = offset % kBlockSize;
            const Yr::UInt64 count = std::min(size, kBlockSize - at);
            std::memcpy(out, m_block.data() + at, count);
            for (Yr::UInt64 i = at; i < std::min<Yr::UInt64>(8, at + count); ++i)
                out[i - at] = static_cast<char>(index >> (8 * i));
            offset += count;
            out += count;
            size -= count;
        }
    }

private:
    std::vector<char> m_block;
};

class ChecksumOBinaryChannel final : public Yr::OBinaryChannel {
public:
    void Write(const char* buffer, Yr::UInt32 size) override {
        crc.Update(buffer, size);
        count += size;
    }
    void Flush() override {}
    void Close() override {}

    CRC32 crc;
    Yr::UInt64 count = 0;
};

std::string BigEndian(Yr::UInt64 value, int size) {
    std::string bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

std::string StoredRecord(const std::string& name) {
    return BigEndian(name.size(), 2) + name + BigEndian(ArchiveEntry::Stored, 4) + BigEndian(0, 4);
}

std::string Trailer(Yr::UInt64 size, Yr::UInt32 crc) {
    return BigEndian(size, 8) + BigEndian(size, 8) + BigEndian(crc, 4);
}

Yr::UInt32 CrcOf(const std::string& bytes) {
    CRC32 crc;
    crc.Update(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    return crc.GetValue();
}

struct ReadBack {
    Yr::UInt64 size = 0;
    CRC32 crc;
};

ReadBack ReadToEnd(ArchiveIBinaryChannel& archive, std::vector<char>& piece) {
    ReadBack read;
    for (Yr::UInt32 count;
         (count = archive.Read(piece.data(), static_cast<Yr::UInt32>(piece.size()),
                               Yr::kReadSome)) != 0;) {
        read.crc.Update(piece.data(), count);
        read.size += count;
    }
    return read;
}

// The archive the writer should make of the two entries, built from the
// layout alone: header and "big" record, the big data in framed chunks, then
// its end mark and trailer and the whole small "after" entry.
class SynthesizedArchive final : public Yr::IBinaryChannel {
public:
    SynthesizedArchive(const Pattern& pattern, Yr::UInt32 bigCrc)
        : m_pattern(pattern),
          m_head("MorvelanArchive" + BigEndian(1, 4) + BigEndian(1, 4) + BigEndian(0, 4) +
                 BigEndian(0, 4) + StoredRecord("big")),
          m_tail(BigEndian(0, 4) + Trailer(kBigSize, bigCrc) + StoredRecord("after") +
                 BigEndian(kAfterData.size(), 4) + kAfterData + BigEndian(0, 4) +
                 Trailer(kAfterData.size(), CrcOf(kAfterData))) {}

    Yr::UInt64 GetSize() const { return m_head.size() + kFramedSize + m_tail.size(); }
    Yr::UInt64 GetPosition() const { return m_position; }
    Yr::UInt32 GetCRC() const { return m_crc.GetValue(); }

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override {
        const Yr::UInt32 count = Produce(buffer, size);
        m_crc.Update(buffer, count);
        m_position += count;
        return count;
    }
    Yr::UInt64 GetAvailable() const override { return GetSize() - m_position; }
    void Close() override {}

private:
    static constexpr Yr::UInt64 kFramedSize =
        kBigSize + 4 * ((kBigSize + kChunkSize - 1) / kChunkSize);

    static Yr::UInt32 Copy(const std::string& from, Yr::UInt64 at, char* buffer, Yr::UInt32 size) {
        const auto count = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(size, from.size() - at));
        std::memcpy(buffer, from.data() + at, count);
        return count;
    }

    Yr::UInt32 Produce(char* buffer, Yr::UInt32 size) const {
        if (m_position < m_head.size()) return Copy(m_head, m_position, buffer, size);
        const Yr::UInt64 framed = m_position - m_head.size();
        if (framed >= kFramedSize) {
            const Yr::UInt64 at = framed - kFramedSize;
            return at < m_tail.size() ? Copy(m_tail, at, buffer, size) : 0;
        }
        const Yr::UInt64 chunk = framed / kFramedChunkSize;
        const Yr::UInt64 at = framed % kFramedChunkSize;
        const Yr::UInt64 length = std::min(kChunkSize, kBigSize - chunk * kChunkSize);
        if (at < 4) return Copy(BigEndian(length, 4), at, buffer, size);
        const auto count = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(size, length - (at - 4)));
        m_pattern.Fill(chunk * kChunkSize + at - 4, buffer, count);
        return count;
    }

    const Pattern& m_pattern;
    const std::string m_head;
    const std::string m_tail;
    Yr::UInt64 m_position = 0;
    CRC32 m_crc;
};

TEST(LargeArchiveTest, EntryPastFourGiBIsWrittenAndReadBackByteForByte) {
    const Pattern pattern;
    std::vector<char> piece(kPieceSize);

    ChecksumOBinaryChannel written;
    CRC32 bigCrc;
    {
        ArchiveOBinaryChannel archive(written, 0);
        const auto big = archive.PutNextEntry("big", ArchiveEntry::Stored);
        for (Yr::UInt64 offset = 0; offset < kBigSize;) {
            const auto count =
                static_cast<Yr::UInt32>(std::min<Yr::UInt64>(kPieceSize, kBigSize - offset));
            pattern.Fill(offset, piece.data(), count);
            bigCrc.Update(piece.data(), count);
            archive.Write(piece.data(), count);
            offset += count;
        }
        archive.CloseEntry();
        EXPECT_EQ(big->GetSize(), kBigSize);
        EXPECT_EQ(big->GetArchivedSize(), kBigSize);
        EXPECT_EQ(big->GetCrc(), bigCrc.GetValue());
        archive.PutNextEntry("after", ArchiveEntry::Stored);
        archive.Write(kAfterData.data(), static_cast<Yr::UInt32>(kAfterData.size()));
        archive.Close();
    }

    SynthesizedArchive synthesized(pattern, bigCrc.GetValue());
    ArchiveIBinaryChannel archive(synthesized);
    const auto big = archive.GetNextEntry();
    ASSERT_TRUE(big);
    EXPECT_EQ(big->GetName().ToUtf8(), "big");
    const ReadBack bigData = ReadToEnd(archive, piece);
    EXPECT_EQ(bigData.size, kBigSize);
    EXPECT_EQ(bigData.crc.GetValue(), bigCrc.GetValue());

    // Leaving the big entry checks its trailer; the next record lies past 4 GiB.
    const auto after = archive.GetNextEntry();
    ASSERT_TRUE(after);
    EXPECT_EQ(big->GetSize(), kBigSize);
    EXPECT_EQ(big->GetArchivedSize(), kBigSize);
    EXPECT_EQ(after->GetName().ToUtf8(), "after");
    const ReadBack afterData = ReadToEnd(archive, piece);
    EXPECT_EQ(afterData.size, kAfterData.size());
    EXPECT_EQ(afterData.crc.GetValue(), CrcOf(kAfterData));
    EXPECT_FALSE(archive.GetNextEntry());

    // The whole synthesized archive was read, and the writer made the same bytes.
    EXPECT_EQ(synthesized.GetPosition(), synthesized.GetSize());
    EXPECT_EQ(written.count, synthesized.GetSize());
    EXPECT_EQ(written.crc.GetValue(), synthesized.GetCRC());
}

}  // namespace
