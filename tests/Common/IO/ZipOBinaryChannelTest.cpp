// What the zip writer puts in the stream: records the peers and our reader
// accept, descriptors only where sizes were not given, zip64 where counts
// need it, and refusals where the caller breaks a promise.
#include "Common/IO/ZipOBinaryChannel.h"

#include <gtest/gtest.h>

#include <string>

#include "Common/IO/CRC32.h"
#include "Common/IO/ZipException.h"
#include "Common/IO/ZipFormat.h"
#include "Common/IO/ZipIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/PeerProcess.h"
#include "tests/support/RecordingOBinaryChannel.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace Morvelan::Common::IO;
using Morvelan::Testing::RecordingOBinaryChannel;

Yr::UInt32 Crc(const std::string& data) {
    CRC32 crc;
    crc.Update(data.data(), static_cast<Yr::UInt32>(data.size()));
    return crc.GetValue();
}

// Every entry name and content, read back with our reader.
std::vector<std::pair<std::string, std::string>> ReadBack(const std::string& zip) {
    Yr::MemoryIBinaryChannel input(zip.data(), static_cast<Yr::UInt32>(zip.size()));
    ZipIBinaryChannel reader(input);
    std::vector<std::pair<std::string, std::string>> entries;
    while (const auto entry = reader.GetNextEntry()) {
        std::string data;
        char piece[4096];
        while (const Yr::UInt32 count = reader.Read(piece, sizeof piece, Yr::kReadSome))
            data.append(piece, count);
        entries.emplace_back(entry->GetName().ToUtf8(), data);
    }
    return entries;
}

TEST(ZipOBinaryChannelTest, DescribesOnlyWhatWasNotGivenInAdvance) {
    RecordingOBinaryChannel output;
    ZipOBinaryChannel zip(output);
    const std::string data = "known in advance";
    const auto known = Yr::MakeRef<ZipEntry>("known.txt");
    known->SetMethod(ZipEntry::Stored);
    known->SetSize(data.size());
    known->SetCompressedSize(data.size());
    known->SetCrc(Crc(data));
    zip.PutNextEntry(known);
    zip.Write(data.data(), static_cast<Yr::UInt32>(data.size()));
    zip.PutNextEntry("streamed.txt", ZipEntry::Deflated);
    zip.Write(data.data(), static_cast<Yr::UInt32>(data.size()));
    zip.Close();
    const std::string& bytes = output.GetBytes();
    // General-purpose flags of each local header.
    EXPECT_EQ(ZipFormat::Load<Yr::UInt16>(bytes.data() + 6), 0);
    const std::size_t second = bytes.find("PK\3\4", 4);
    ASSERT_NE(second, std::string::npos);
    EXPECT_EQ(ZipFormat::Load<Yr::UInt16>(bytes.data() + second + 6),
              ZipFormat::kFlagDataDescriptor);
    EXPECT_EQ(output.GetCloseCount(), 1);
    const auto entries = ReadBack(bytes);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0], std::make_pair(std::string("known.txt"), data));
    EXPECT_EQ(entries[1], std::make_pair(std::string("streamed.txt"), data));
}

TEST(ZipOBinaryChannelTest, RefusesBrokenPromisesAndLateWrites) {
    RecordingOBinaryChannel output;
    ZipOBinaryChannel zip(output);
    EXPECT_THROW(zip.Write("x", 1), ZipException);
    const auto entry = Yr::MakeRef<ZipEntry>("a");
    entry->SetMethod(ZipEntry::Stored);
    entry->SetSize(2);
    entry->SetCompressedSize(2);
    entry->SetCrc(Crc("ab"));
    zip.PutNextEntry(entry);
    zip.Write("ax", 2);
    EXPECT_THROW(zip.CloseEntry(), ZipException);
    EXPECT_THROW(zip.SetLevel(10), Yr::IllegalArgumentException);
    zip.Finish();
    EXPECT_TRUE(zip.IsFinished());
    EXPECT_THROW(zip.PutNextEntry("b", ZipEntry::Stored), ZipException);
}

// More entries than the end record can count: the zip64 end record and
// its locator carry the count, and the peers take it from there.
TEST(ZipOBinaryChannelTest, CountsPast65535EntriesInZip64Records) {
    Morvelan::Testing::ScopedTempFolder folder;
    RecordingOBinaryChannel output;
    ZipOBinaryChannel zip(output);
    constexpr int kEntries = 70000;
    for (int i = 0; i < kEntries; ++i) {
        zip.PutNextEntry(Yr::UniString::FromUtf8("e" + std::to_string(i)), ZipEntry::Stored);
        zip.Write("z", 1);
    }
    zip.Close();
    const std::string& bytes = output.GetBytes();
    EXPECT_NE(bytes.rfind("PK\6\6"), std::string::npos);
    EXPECT_EQ(ReadBack(bytes).size(), static_cast<std::size_t>(kEntries));
    Morvelan::Testing::WriteFile(folder.PathOf("many.zip"), bytes);
    const std::string zipPath = Morvelan::Testing::Quoted(folder.PathOf("many.zip"));
    EXPECT_EQ(
        Morvelan::Testing::RunCommand("python3 -c 'import sys, zipfile; "
                                      "print(len(zipfile.ZipFile(sys.argv[1]).namelist()))' " +
                                      zipPath)
            .out,
        "70000\n");
    EXPECT_EQ(Morvelan::Testing::RunCommand("unzip -t -q " + zipPath + " >/dev/null").status, 0);
}

}  // namespace
