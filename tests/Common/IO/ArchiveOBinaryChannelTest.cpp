#include <gtest/gtest.h>

#include <string>

#include "Common/IO/ArchiveEntryImpl.h"
#include "Common/IO/ArchiveException.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/HexBytes.h"
#include "tests/support/RecordingOBinaryChannel.h"

namespace {

using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveEntryImpl;
using Morvelan::Common::IO::ArchiveException;
using Morvelan::Common::IO::ArchiveOBinaryChannel;
using Morvelan::Testing::BytesFromHex;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::Hex;
using Morvelan::Testing::RecordingOBinaryChannel;

// "MorvelanArchive", major 1, minor 1.
const std::string kMagicAndVersions =
    BytesFromHex("4D 6F 72 76 65 6C 61 6E 41 72 63 68 69 76 65 00000001 00000001");

void Write(ArchiveOBinaryChannel& archive, const std::string& data) {
    archive.Write(data.data(), static_cast<Yr::UInt32>(data.size()));
}

TEST(ArchiveOBinaryChannelTest, EmptyArchiveIsThirtyOneBytes) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 0);
    archive.Close();
    archive.Close();
    EXPECT_EQ(Hex(sink.GetBytes()), Hex(kMagicAndVersions + BytesFromHex("00000000 00000000")));
    EXPECT_EQ(sink.GetCloseCount(), 1);
}

TEST(ArchiveOBinaryChannelTest, ReservedHeaderIsPaddedWithZerosAndFirstEntryFollows) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 256);
    archive.PutNextEntry("e", ArchiveEntry::Stored);
    archive.Close();
    const std::string& bytes = sink.GetBytes();
    ASSERT_GT(bytes.size(), 256u);
    EXPECT_EQ(Hex(bytes.substr(0, 31)), Hex(kMagicAndVersions + BytesFromHex("00000100 00000000")));
    EXPECT_EQ(bytes.substr(31, 225), std::string(225, '\0'));
    // Record, empty framing, trailer of a stored entry with no data.
    EXPECT_EQ(Hex(bytes.substr(256)),
              Hex(BytesFromHex("0001 65 00000002 00000000  00000000"
                               "0000000000000000 0000000000000000 00000000")));
}

TEST(ArchiveOBinaryChannelTest, StoredEntryIsFramedInChunksWithItsTrailer) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 0);
    archive.PutHeader("k", "v");
    ArchiveEntry::Headers headers;
    headers.Put("h", "w");
    const auto entry = archive.PutNextEntry("a/b", headers, ArchiveEntry::Stored);
    Write(archive, "hello");
    EXPECT_FALSE(entry->IsClosed());
    archive.CloseEntry();
    EXPECT_FALSE(archive.HasCurrentEntry());
    ASSERT_TRUE(entry->IsClosed());
    EXPECT_EQ(entry->GetSize(), 5u);
    EXPECT_EQ(entry->GetArchivedSize(), 5u);
    EXPECT_EQ(entry->GetCrc(), 0x3610A686u);
    archive.Close();
    EXPECT_EQ(Hex(sink.GetBytes()),
              Hex(kMagicAndVersions + BytesFromHex("00000000 00000001 0001 6B 0001 76"
                                                   "0003 612F62 00000002 00000001 0001 68 0001 77"
                                                   "00000005 68656C6C6F 00000000"
                                                   "0000000000000005 0000000000000005 3610A686")));
}

TEST(ArchiveOBinaryChannelTest, EntryChunksAreAtMost256KiB) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 0);
    archive.PutNextEntry("big", ArchiveEntry::Stored);
    const std::string data(262144 + 10, 'x');
    Write(archive, data);
    archive.Close();
    const std::string& bytes = sink.GetBytes();
    const std::size_t data_start = 31 + 2 + 3 + 4 + 4;
    EXPECT_EQ(Hex(bytes.substr(data_start, 4)), "00 04 00 00");
    EXPECT_EQ(Hex(bytes.substr(data_start + 4 + 262144, 4)), "00 00 00 0A");
    EXPECT_EQ(bytes.size(), data_start + 4 + 262144 + 4 + 10 + 4 + 20);
}

TEST(ArchiveOBinaryChannelTest, DefaultMethodIsResolvedBeforeTheRecord) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 0);
    EXPECT_EQ(archive.PutNextEntry("a", ArchiveEntry::Default)->GetMethod(),
              ArchiveEntry::Deflated);
    archive.SetMethod(ArchiveEntry::QuickLZ);
    EXPECT_EQ(archive.PutNextEntry("b", ArchiveEntry::Default)->GetMethod(), ArchiveEntry::QuickLZ);
    archive.Close();
    EXPECT_EQ(Hex(sink.GetBytes().substr(31, 7)), "00 01 61 00 00 00 01");
}

TEST(ArchiveOBinaryChannelTest, EmptyCompressedEntriesKeepWhatTheCompressorEmitted) {
    for (const auto method : {ArchiveEntry::Deflated, ArchiveEntry::QuickLZ}) {
        RecordingOBinaryChannel sink;
        ArchiveOBinaryChannel archive(sink, 0);
        const auto entry = archive.PutNextEntry("e", method);
        archive.Close();
        EXPECT_GT(entry->GetArchivedSize(), 0u) << method;
        EXPECT_EQ(entry->GetSize(), 0u);
        EXPECT_EQ(entry->GetCrc(), 0u);
    }
}

TEST(ArchiveOBinaryChannelTest, HeaderThatDoesNotFitFailsWhenWritten) {
    const auto fill = [](ArchiveOBinaryChannel& archive) {
        archive.PutHeader("name", std::string(300, 'v').c_str());
    };
    const char* const message =
        "Failed to write archive header: archive header size exceeds the specified header size.";
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel byEntry(sink, 256);
    fill(byEntry);
    ExpectYrException<ArchiveException>([&] { byEntry.PutNextEntry("e", ArchiveEntry::Stored); },
                                        message, Yr::kIOErrorCode);
    ArchiveOBinaryChannel byFlush(sink, 256);
    fill(byFlush);
    ExpectYrException<ArchiveException>([&] { byFlush.Flush(); }, message, Yr::kIOErrorCode);
    ArchiveOBinaryChannel byClose(sink, 256);
    fill(byClose);
    ExpectYrException<ArchiveException>([&] { byClose.Close(); }, message, Yr::kIOErrorCode);
}

TEST(ArchiveOBinaryChannelTest, RefusesBadArguments) {
    RecordingOBinaryChannel sink;
    const int code = Yr::kIllegalArgumentErrorCode;
    using IAE = Yr::IllegalArgumentException;
    ExpectYrException<IAE>([&] { ArchiveOBinaryChannel(sink, 255); },
                           "Invalid header size: header size is too small.", code);
    ExpectYrException<IAE>([&] { ArchiveOBinaryChannel(Yr::Ref<Yr::OBinaryChannel>(), 0); },
                           "Invalid output channel: channel is null.", code);
    ArchiveOBinaryChannel archive(sink, 0);
    ExpectYrException<IAE>([&] { archive.SetCompressionLevel(10); }, "Invalid compression level.",
                           code);
    ExpectYrException<IAE>([&] { archive.SetMethod(ArchiveEntry::Default); },
                           "Invalid default archive entry compression method.", code);
    ExpectYrException<IAE>([&] { archive.PutHeader("", "v"); },
                           "Invalid archive header name: name is empty.", code);
    ExpectYrException<IAE>([&] { archive.PutNextEntry("", ArchiveEntry::Stored); },
                           "Invalid archive entry name: name is empty.", code);
    ArchiveEntry::Headers bad;
    bad.Put("", "v");
    ExpectYrException<IAE>(
        [&] { archive.PutNextEntry("", bad, ArchiveEntry::Stored); },
        "Invalid archive entry headers: headers contains header with empty name.", code);
    ExpectYrException<IAE>([&] { archive.Write(nullptr, 1); },
                           "Invalid source buffer: source buffer is null.", code);
    ExpectYrException<IAE>([&] { archive.Write("x", 0); },
                           "Invalid source buffer: buffer size is 0.", code);
    ExpectYrException<ArchiveException>(
        [&] { archive.Write("x", 1); },
        "Failed to write data to archive binary output channel: archive entry hasn't been "
        "started yet.",
        Yr::kIOErrorCode);
}

TEST(ArchiveOBinaryChannelTest, StatesRefuseWhatTheyNoLongerAllow) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 0);
    archive.PutNextEntry("e", ArchiveEntry::Stored);
    ExpectYrException<ArchiveException>(
        [&] { archive.PutHeader("k", "v"); },
        "Archive headers can't be updated, header has already been written.", Yr::kIOErrorCode);
    archive.Finish();
    EXPECT_TRUE(archive.IsFinished());
    const char* const finished = "Archive binary output channel is finished.";
    ExpectYrException<Yr::IOException>([&] { archive.Write("x", 1); }, finished, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.PutNextEntry("f", ArchiveEntry::Stored); },
                                       finished, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.ClearHeaders(); }, finished, Yr::kIOErrorCode);
    archive.Close();
    const char* const closed = "Archive binary output channel is closed.";
    ExpectYrException<Yr::IOException>([&] { archive.IsFinished(); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.Flush(); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { archive.Write("x", 1); }, closed, Yr::kIOErrorCode);
}

TEST(ArchiveOBinaryChannelTest, CloseClosesTheChannelEvenWhenFinishingFails) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, 0);
    archive.PutNextEntry("e", ArchiveEntry::Stored);
    sink.SetFailing();
    EXPECT_THROW(archive.Close(), Yr::IOException);
    EXPECT_EQ(sink.GetCloseCount(), 1);
}

TEST(ArchiveEntryImplTest, EqualsComparesSizesOnlyWhenBothAreClosed) {
    ArchiveEntry::Headers headers;
    headers.Put("h", "v");
    ArchiveEntryImpl a("n", headers, ArchiveEntry::Stored);
    ArchiveEntryImpl b("n", headers, ArchiveEntry::Stored);
    a.Close(1, 2, 3);
    EXPECT_TRUE(a.Equals(b));
    b.Close(1, 2, 4);
    EXPECT_FALSE(a.Equals(b));
    EXPECT_FALSE(a.Equals(ArchiveEntryImpl("n", ArchiveEntry::Stored)));
    EXPECT_FALSE(a.Equals(ArchiveEntryImpl("n", headers, ArchiveEntry::Deflated)));
    EXPECT_EQ(a.GetHeader("h"), "v");
    EXPECT_EQ(a.GetHeader("absent"), "");
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] { a.ContainsHeader(""); }, "Invalid archive entry header name: name is empty.",
        Yr::kIllegalArgumentErrorCode);
}

}  // namespace
