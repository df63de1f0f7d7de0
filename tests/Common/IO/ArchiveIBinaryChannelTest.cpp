#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "Common/IO/ArchiveException.h"
#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/HexBytes.h"
#include "tests/support/OneByteIBinaryChannel.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveException;
using Morvelan::Common::IO::ArchiveIBinaryChannel;
using Morvelan::Common::IO::ArchiveOBinaryChannel;
using Morvelan::Testing::BytesFromHex;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::OneByteIBinaryChannel;
using Morvelan::Testing::RecordingOBinaryChannel;

struct EntryData {
    std::string name;
    ArchiveEntry::Method method;
    std::string data;
};

const std::string kMagic = "MorvelanArchive";

std::string Text(std::size_t size) {
    std::string text;
    for (int line = 0; text.size() < size; ++line)
        text += "line " + std::to_string(line) + " of a text that compresses well\n";
    text.resize(size);
    return text;
}

std::string Noise(std::size_t size) {
    std::mt19937 generator(11);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(generator());
    return bytes;
}

std::string WriteArchive(const std::vector<EntryData>& entries, Yr::UInt32 reserved = 0) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, reserved);
    archive.PutHeader("creator", "tests");
    for (const auto& entry : entries) {
        ArchiveEntry::Headers headers;
        headers.Put("kind", entry.name.c_str());
        archive.PutNextEntry(entry.name.c_str(), headers, entry.method);
        // Pieces of odd sizes, so the top buffer fills across writes.
        for (std::size_t offset = 0; offset < entry.data.size(); offset += 40000)
            archive.Write(entry.data.data() + offset, static_cast<Yr::UInt32>(std::min<std::size_t>(
                                                          40000, entry.data.size() - offset)));
    }
    archive.Close();
    return sink.GetBytes();
}

std::string ReadRest(Yr::IBinaryChannel& channel, Yr::UInt32 piece) {
    std::string data;
    std::string buffer(piece, '\0');
    while (const Yr::UInt32 count = channel.Read(buffer.data(), piece, Yr::kReadSome))
        data.append(buffer, 0, count);
    return data;
}

// Every entry's name and data, read to the end of the archive.
std::vector<EntryData> ReadArchive(Yr::IBinaryChannel& source, Yr::UInt32 piece = 5000) {
    ArchiveIBinaryChannel archive(source);
    std::vector<EntryData> entries;
    while (const auto entry = archive.GetNextEntry())
        entries.push_back(
            {entry->GetName().ToUtf8(), entry->GetMethod(), ReadRest(archive, piece)});
    return entries;
}

std::vector<EntryData> ReadArchive(const std::string& bytes, Yr::UInt32 piece = 5000) {
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    return ReadArchive(source, piece);
}

void ExpectSameEntries(const std::vector<EntryData>& read, const std::vector<EntryData>& written) {
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].name, written[i].name);
        EXPECT_EQ(read[i].method, written[i].method);
        EXPECT_TRUE(read[i].data == written[i].data) << read[i].name;
    }
}

std::vector<EntryData> EveryMethod() {
    std::vector<EntryData> entries;
    for (const auto method :
         {ArchiveEntry::Stored, ArchiveEntry::Deflated, ArchiveEntry::QuickLZ}) {
        const std::string tag = std::to_string(method);
        entries.push_back({"empty" + tag, method, ""});
        entries.push_back({"one" + tag, method, "x"});
        entries.push_back({"text" + tag, method, Text(300000)});
        entries.push_back({"noise" + tag, method, Noise(70000)});
    }
    return entries;
}

// A string field as the format writes it: 16-bit length, then the bytes.
std::string NameField(const std::string& name) {
    return std::string{'\0', static_cast<char>(name.size())} + name;
}

// "MorvelanArchive", the versions, reserved size and header count given.
std::string Header(Yr::UInt32 major, Yr::UInt32 minor,
                   const std::string& rest = "00000000 00000000") {
    char versions[20];
    std::snprintf(versions, sizeof versions, "%08X %08X ", major, minor);
    return kMagic + BytesFromHex(versions + rest);
}

TEST(ArchiveIBinaryChannelTest, ReadsBackEveryMethodAndSize) {
    const auto written = EveryMethod();
    const std::string bytes = WriteArchive(written);
    for (const Yr::UInt32 piece : {1u, 4096u, 65536u, 1u << 20})
        ExpectSameEntries(ReadArchive(bytes, piece), written);
}

TEST(ArchiveIBinaryChannelTest, ReadsFromAChannelThatHandsOutOneByteAtATime) {
    const std::vector<EntryData> written = {{"a", ArchiveEntry::Deflated, Text(3000)},
                                            {"b", ArchiveEntry::QuickLZ, Text(3000)},
                                            {"c", ArchiveEntry::Stored, Noise(300)}};
    OneByteIBinaryChannel source(WriteArchive(written, 256));
    ExpectSameEntries(ReadArchive(source, 777), written);
}

TEST(ArchiveIBinaryChannelTest, EntriesCarryHeadersAndAreClosedWithTheirTrailer) {
    const std::string data = Text(1000);
    const std::string bytes = WriteArchive({{"n", ArchiveEntry::Deflated, data}});
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    ArchiveIBinaryChannel archive(source);
    EXPECT_EQ(archive.GetHeader("creator"), "tests");
    EXPECT_TRUE(archive.ConstainsHeader("creator"));
    EXPECT_EQ(archive.GetHeaderCount(), 1u);
    EXPECT_EQ(archive.GetHeader("absent"), "");
    const auto entry = archive.GetNextEntry();
    EXPECT_EQ(entry->GetHeader("kind"), "n");
    EXPECT_FALSE(entry->IsClosed());
    archive.CloseEntry();
    EXPECT_FALSE(archive.HasCurrentEntry());
    ASSERT_TRUE(entry->IsClosed());
    EXPECT_EQ(entry->GetSize(), data.size());
    EXPECT_LT(entry->GetArchivedSize(), data.size());
    char byte;
    EXPECT_EQ(archive.Read(&byte, 1, Yr::kReadSome), 0u);
    EXPECT_TRUE(archive.GetNextEntry().IsNull());
}

TEST(ArchiveIBinaryChannelTest, PeekedEntryIsTheNextOneGot) {
    const std::string bytes =
        WriteArchive({{"a", ArchiveEntry::Stored, "aaa"}, {"b", ArchiveEntry::QuickLZ, "bbb"}});
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    ArchiveIBinaryChannel archive(source);
    const auto peeked = archive.PeekNextEntry();
    EXPECT_EQ(peeked->GetName(), "a");
    EXPECT_FALSE(archive.HasCurrentEntry());
    EXPECT_EQ(archive.GetNextEntry(), peeked);
    // Peeking with an entry current leaves (and checks) it first.
    EXPECT_EQ(archive.PeekNextEntry()->GetName(), "b");
    EXPECT_TRUE(peeked->IsClosed());
    EXPECT_EQ(ReadRest(archive, 10), "");
    EXPECT_EQ(archive.GetNextEntry()->GetName(), "b");
    EXPECT_EQ(ReadRest(archive, 10), "bbb");
    EXPECT_TRUE(archive.PeekNextEntry().IsNull());
}

TEST(ArchiveIBinaryChannelTest, ShortestArchiveHasNoHeadersAndNoEntries) {
    const std::string bytes = Header(1, 1);
    ASSERT_EQ(bytes.size(), 31u);
    Yr::MemoryIBinaryChannel source(bytes.data(), 31);
    ArchiveIBinaryChannel archive(source);
    EXPECT_FALSE(archive.HasHeaders());
    EXPECT_EQ(archive.GetReservedHeaderSize(), 0u);
    EXPECT_TRUE(archive.GetNextEntry().IsNull());
}

TEST(ArchiveIBinaryChannelTest, VersionTestIsLenient) {
    const struct {
        Yr::UInt32 major, minor;
        bool accepted;
    } cases[] = {{1, 0, true}, {1, 1, true},  {1, 99, true}, {2, 0, true},
                 {2, 1, true}, {2, 2, false}, {0, 7, false}};
    for (const auto& test : cases) {
        const std::string bytes = Header(test.major, test.minor);
        Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
        ArchiveIBinaryChannel archive(source);
        if (test.accepted) {
            EXPECT_TRUE(archive.GetNextEntry().IsNull()) << test.major << "." << test.minor;
        } else {
            ExpectYrException<ArchiveException>(
                [&] { archive.GetHeaderCount(); },
                "Failed to read archive header: unsupported archive version read.",
                Yr::kIOErrorCode);
        }
    }
}

TEST(ArchiveIBinaryChannelTest, ReservedHeaderIsSkippedToItsEnd) {
    // A 40-byte header ("a" = "bcde") in 256 reserved bytes.
    const std::vector<EntryData> written = {{"e", ArchiveEntry::Stored, "data"}};
    std::string entry = WriteArchive(written).substr(31 + 2 + 7 + 2 + 5);
    const std::string bytes =
        Header(1, 1, "00000100 00000001 0001 61 0004 62636465") + std::string(216, '\0') + entry;
    ASSERT_EQ(bytes.size(), 256 + entry.size());
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    ArchiveIBinaryChannel archive(source);
    EXPECT_EQ(archive.GetReservedHeaderSize(), 256u);
    EXPECT_EQ(archive.GetHeader("a"), "bcde");
    EXPECT_EQ(archive.GetNextEntry()->GetName(), "e");
    EXPECT_EQ(ReadRest(archive, 10), "data");
}

TEST(ArchiveIBinaryChannelTest, RefusesDamagedHeadersAndRecords) {
    const std::string entryTail =
        BytesFromHex("00000000 00000000 0000000000000000 0000000000000000 00000000");
    const struct {
        const char* what;
        std::string bytes;
        const char* message;
    } cases[] = {
        {"magic", "MorvelanArchivf" + Header(1, 1).substr(15),
         "Failed to read archive header: invalid archive header magic."},
        {"header past its reserved size",
         Header(1, 1, "00000100 00000001 0100") + std::string(256, 'x') + BytesFromHex("0000"),
         "Failed to read archive header: archive header size exceeds the specified header size."},
        {"empty entry name", Header(1, 1) + BytesFromHex("0000 00000002") + entryTail,
         "Failed to read archive entry: invalid entry name."},
        {"method 0", Header(1, 1) + BytesFromHex("0001 65 00000000") + entryTail,
         "Failed to read archive entry: invalid entry method."},
        {"method 4", Header(1, 1) + BytesFromHex("0001 65 00000004") + entryTail,
         "Failed to read archive entry: invalid entry method."},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        Yr::MemoryIBinaryChannel source(test.bytes.data(),
                                        static_cast<Yr::UInt32>(test.bytes.size()));
        ArchiveIBinaryChannel archive(source);
        ExpectYrException<ArchiveException>([&] { archive.GetNextEntry(); }, test.message,
                                            Yr::kIOErrorCode);
    }
}

TEST(ArchiveIBinaryChannelTest, DamagedDataIsFoundWhenTheEntryIsLeft) {
    const std::string data = Text(100);
    std::string bytes = WriteArchive({{"e", ArchiveEntry::Stored, data}});
    bytes[bytes.find("line 1")] ^= 1;
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    ArchiveIBinaryChannel archive(source);
    archive.GetNextEntry();
    EXPECT_EQ(ReadRest(archive, 7).size(), data.size());
    ExpectYrException<ArchiveException>([&] { archive.GetNextEntry(); },
                                        "Failed to read archive entry: entry crc check failed.",
                                        Yr::kIOErrorCode);
    EXPECT_FALSE(archive.HasCurrentEntry());
}

TEST(ArchiveIBinaryChannelTest, LeavingAPartlyReadEntryStillChecksAllOfIt) {
    for (const auto method :
         {ArchiveEntry::Stored, ArchiveEntry::Deflated, ArchiveEntry::QuickLZ}) {
        std::string bytes = WriteArchive({{"e", method, Text(200000)}});
        const std::string& clean = bytes;
        {
            Yr::MemoryIBinaryChannel source(clean.data(), static_cast<Yr::UInt32>(clean.size()));
            ArchiveIBinaryChannel archive(source);
            archive.GetNextEntry();
            char piece[10];
            archive.Read(piece, sizeof piece, Yr::kReadAll);
            archive.CloseEntry();
            EXPECT_TRUE(archive.GetNextEntry().IsNull());
        }
        // The size field of the trailer, 12 bytes before the end.
        std::string damaged = bytes;
        damaged[damaged.size() - 5] ^= 1;
        Yr::MemoryIBinaryChannel source(damaged.data(), static_cast<Yr::UInt32>(damaged.size()));
        ArchiveIBinaryChannel archive(source);
        archive.GetNextEntry();
        ExpectYrException<ArchiveException>(
            [&] { archive.CloseEntry(); }, "Failed to read archive entry: entry size check failed.",
            Yr::kIOErrorCode);
    }
}

TEST(ArchiveIBinaryChannelTest, TrailerIsCheckedArchivedSizeFirst) {
    std::string bytes = WriteArchive({{"e", ArchiveEntry::Stored, "abc"}});
    for (const std::size_t back : {20u, 12u, 4u}) bytes[bytes.size() - back + 3] ^= 1;
    Yr::MemoryIBinaryChannel source(bytes.data(), static_cast<Yr::UInt32>(bytes.size()));
    ArchiveIBinaryChannel archive(source);
    archive.GetNextEntry();
    ExpectYrException<ArchiveException>(
        [&] { archive.CloseEntry(); },
        "Failed to read archive entry: entry archived size check failed.", Yr::kIOErrorCode);
}

// Cut anywhere, an archive reads as the entries before the cut when the cut
// falls before the end of an entry's name (there is no end record), and
// fails everywhere else.
TEST(ArchiveIBinaryChannelTest, TruncationAtEveryOffsetEndsOrFails) {
    const std::vector<EntryData> written = {{"first", ArchiveEntry::Deflated, Text(700)},
                                            {"second", ArchiveEntry::QuickLZ, Text(900)},
                                            {"third", ArchiveEntry::Stored, "tail"}};
    const std::string bytes = WriteArchive(written);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        std::size_t entriesBefore = 0;
        bool endsCleanly = false;
        for (const auto& entry : written) {
            const std::size_t nameStart = bytes.find(NameField(entry.name));
            const std::size_t nameEnd = nameStart + 2 + entry.name.size();
            if (size >= nameStart && size < nameEnd) endsCleanly = true;
            if (size >= nameEnd) ++entriesBefore;
        }
        try {
            const auto read = ReadArchive(bytes.substr(0, size));
            EXPECT_TRUE(endsCleanly) << "cut at " << size;
            EXPECT_EQ(read.size(), entriesBefore) << "cut at " << size;
        } catch (const Yr::IOException&) {
            EXPECT_FALSE(endsCleanly) << "cut at " << size;
        }
    }
}

// Some bits carry no content (deflate's padding, a QuickLZ stream's packet
// size made larger, unused control bits): a flip there may pass, but only
// with the entries unchanged.
TEST(ArchiveIBinaryChannelTest, FlippedBytesInDataOrTrailerAreCaughtOrHarmless) {
    const std::vector<EntryData> written = {{"d", ArchiveEntry::Deflated, Text(500)},
                                            {"q", ArchiveEntry::QuickLZ, Text(500)},
                                            {"s", ArchiveEntry::Stored, Noise(100)}};
    const std::string bytes = WriteArchive(written);
    // Each entry's data begins after its record: name "x", method, one header.
    const std::size_t recordSize = 2 + 1 + 4 + 4 + 2 + 4 + 2 + 1;
    std::size_t start = bytes.find(NameField("d"));
    for (std::size_t entry = 0; entry < written.size(); ++entry) {
        const std::size_t next = entry + 1 < written.size()
                                     ? bytes.find(NameField(written[entry + 1].name), start)
                                     : bytes.size();
        ASSERT_NE(next, std::string::npos);
        for (std::size_t offset = start + recordSize; offset < next; ++offset) {
            for (const char mask : {'\x01', '\x80'}) {
                std::string damaged = bytes;
                damaged[offset] ^= mask;
                try {
                    const auto read = ReadArchive(damaged);
                    SCOPED_TRACE(offset);
                    ExpectSameEntries(read, written);
                } catch (const Yr::YrException&) {
                }
            }
        }
        start = next;
    }
}

TEST(ArchiveIBinaryChannelTest, ChunkLengthsThatLieAreRefused) {
    const std::string good = WriteArchive({{"e", ArchiveEntry::Stored, "abcdef"}});
    const std::size_t length = good.find(BytesFromHex("00000006 616263"));
    ASSERT_NE(length, std::string::npos);
    for (const char* lie : {"00000007", "00000005", "7FFFFFFF", "FFFFFFFF", "80000000"}) {
        std::string damaged = good;
        damaged.replace(length, 4, BytesFromHex(lie));
        EXPECT_THROW(ReadArchive(damaged), Yr::IOException) << lie;
    }
}

TEST(ArchiveIBinaryChannelTest, ClosedReaderRefusesEverything) {
    const std::string bytes = WriteArchive({{"e", ArchiveEntry::Stored, "x"}});
    auto source = Yr::MakeRef<OneByteIBinaryChannel>(bytes);
    ArchiveIBinaryChannel archive{Yr::Ref<Yr::IBinaryChannel>(source)};
    archive.GetNextEntry();
    archive.Close();
    archive.Close();
    EXPECT_TRUE(source->IsClosed());
    const char* const closed = "Archive binary input channel is closed.";
    char byte;
    ExpectYrException<Yr::IOException>([&] { archive.Read(&byte, 1, Yr::kReadSome); }, closed,
                                       Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.GetNextEntry(); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.GetHeaderCount(); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.CloseEntry(); }, closed, Yr::kIOErrorCode);
}

}  // namespace
