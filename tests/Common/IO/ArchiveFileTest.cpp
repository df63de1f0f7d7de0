#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "Common/ExceptionPrinting.h"
#include "Common/IO/ArchiveException.h"
#include "Common/IO/ArchiveFile.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryOBinaryChannel.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/RecordingOBinaryChannel.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveException;
using Morvelan::Common::IO::ArchiveFile;
using Morvelan::Common::IO::ArchiveOBinaryChannel;
using Morvelan::Testing::At;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::RecordingOBinaryChannel;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::WriteFile;
namespace fs = std::filesystem;

struct Entry {
    const char* name;
    std::string data;
};

// An archive of `entries` (each method in turn) with the header "k" = "v".
std::string ArchiveBytes(const std::vector<Entry>& entries, Yr::UInt32 reserved = 0) {
    RecordingOBinaryChannel sink;
    ArchiveOBinaryChannel archive(sink, reserved);
    archive.PutHeader("k", "v");
    int method = 0;
    for (const auto& entry : entries) {
        archive.PutNextEntry(entry.name, static_cast<ArchiveEntry::Method>(1 + method++ % 3));
        if (!entry.data.empty())
            archive.Write(entry.data.data(), static_cast<Yr::UInt32>(entry.data.size()));
    }
    archive.Close();
    return sink.GetBytes();
}

std::string ReadEntry(ArchiveFile& archive, const char* name) {
    Yr::MemoryOBinaryChannel sink;
    Morvelan::Common::IO::BinaryChannelUtilities::CopyAll(
        archive.GetInputChannel(archive.GetEntry(name)), sink, 1000);
    return std::string(sink.GetBuffer(), sink.GetSize());
}

class ArchiveFileTest : public testing::Test {
protected:
    std::string Make(const std::vector<Entry>& entries, Yr::UInt32 reserved = 0) {
        WriteFile(m_path, ArchiveBytes(entries, reserved));
        return m_path;
    }

    ScopedTempFolder m_folder;
    std::string m_path = m_folder.PathOf("a.mar");
};

TEST_F(ArchiveFileTest, ListsHeadersAndEntriesAndServesTheirData) {
    ArchiveFile archive(
        At(Make({{"one", "first"}, {"two", std::string(100000, 'x')}, {"one", "again"}})));
    EXPECT_EQ(archive.GetHeader("k"), "v");
    EXPECT_EQ(archive.GetHeader("absent"), "");
    EXPECT_EQ(archive.GetReservedHeaderSize(), 0u);
    EXPECT_EQ(archive.GetEntryCount(), 3u);
    EXPECT_TRUE(archive.GetEntry("absent").IsNull());
    EXPECT_EQ(archive.EnumerateEntries()[1]->GetSize(), 100000u);
    // With two of a name, the first is the one served.
    EXPECT_EQ(ReadEntry(archive, "one"), "first");
    EXPECT_EQ(ReadEntry(archive, "two"), std::string(100000, 'x'));
    const auto channel = archive.GetInputChannel(archive.GetEntry("one"));
    channel->Close();
    char byte;
    ExpectYrException<Yr::IOException>([&] { channel->Read(&byte, 1, Yr::kReadSome); },
                                       "Archive file entry binary input channel is closed.",
                                       Yr::kIOErrorCode);
}

TEST_F(ArchiveFileTest, RefusesEmptyNamesUnknownEntriesAndUseAfterClose) {
    ArchiveFile archive(At(Make({{"e", "x"}})));
    using IAE = Yr::IllegalArgumentException;
    const int code = Yr::kIllegalArgumentErrorCode;
    ExpectYrException<IAE>([&] { archive.GetHeader(""); }, "Invalid header name: name is empty.",
                           code);
    ExpectYrException<IAE>([&] { archive.GetEntry(""); }, "Invalid entry name: name is empty.",
                           code);
    ExpectYrException<IAE>([&] { archive.GetInputChannel(nullptr); },
                           "Invalid archive entry: entry is null.", code);
    WriteFile(m_folder.PathOf("b.mar"), ArchiveBytes({{"elsewhere", "x"}}));
    ArchiveFile other(At(m_folder.PathOf("b.mar")));
    ExpectYrException<ArchiveException>(
        [&] { archive.GetInputChannel(other.GetEntry("elsewhere")); },
        "Failed to get archive entry input channel: archive entry not found.", Yr::kIOErrorCode);
    archive.Close();
    EXPECT_FALSE(archive.IsOpen());
    for (const auto& action : std::vector<std::function<void()>>{
             [&] { archive.GetHeaderCount(); }, [&] { archive.GetEntryCount(); },
             [&] { archive.Update(); }, [&] { archive.ExtractTo(At(m_folder.PathOf("x"))); }})
        ExpectYrException<ArchiveException>(action, "Archive file is closed.", Yr::kIOErrorCode);
}

TEST_F(ArchiveFileTest, UpdateInPlaceRewritesOnlyTheReservedHeader) {
    const std::string before = ReadFile(Make({{"e", "data"}, {"f", "more"}}, 256));
    ArchiveFile archive(At(m_path));
    archive.Update();  // nothing changed: nothing written
    EXPECT_EQ(ReadFile(m_path), before);
    archive.PutHeader("added", "value");
    archive.ClearHeader("k");
    archive.Update();
    EXPECT_TRUE(archive.IsUpdated());
    const std::string after = ReadFile(m_path);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_NE(after.substr(0, 256), before.substr(0, 256));
    EXPECT_EQ(after.substr(256), before.substr(256));
    ArchiveFile reread(At(m_path));
    EXPECT_EQ(reread.GetHeader("added"), "value");
    EXPECT_FALSE(reread.ConstainsHeader("k"));
    EXPECT_EQ(ReadEntry(reread, "f"), "more");
}

TEST_F(ArchiveFileTest, HeadersThatNoLongerFitLeaveTheFileAlone) {
    const std::string before = ReadFile(Make({{"e", "data"}}, 256));
    ArchiveFile archive(At(m_path));
    archive.PutHeader("big", std::string(300, 'v').c_str());
    try {
        archive.Update();
        ADD_FAILURE() << "no exception";
    } catch (const ArchiveException& e) {
        const std::string chain = Morvelan::Common::ToString(e).ToUtf8();
        EXPECT_NE(chain.find("failed to write archive header"), std::string::npos) << chain;
    }
    EXPECT_EQ(ReadFile(m_path), before);
}

TEST_F(ArchiveFileTest, UpdateByCopyKeepsEntriesAndLeavesNoTemporaryFile) {
    Make({{"e", "data"}, {"f", std::string(70000, 'y')}, {"g", ""}});
    ArchiveFile archive(At(m_path));
    archive.PutHeader("k", "changed");
    archive.Update();
    EXPECT_FALSE(fs::exists(m_path + ".updated"));
    ArchiveFile reread(At(m_path));
    EXPECT_EQ(reread.GetHeader("k"), "changed");
    ASSERT_EQ(reread.GetEntryCount(), 3u);
    EXPECT_EQ(ReadEntry(reread, "f"), std::string(70000, 'y'));
    EXPECT_EQ(reread.GetEntry("g")->GetMethod(), ArchiveEntry::QuickLZ);
}

TEST_F(ArchiveFileTest, ExtractsWithTheArchiveNamingRules) {
    ArchiveFile archive(At(Make({{"/a\\b", "ab"}, {"top", "t"}, {"x/y/z", "deep"}})));
    const std::string target = m_folder.PathOf("out");
    archive.ExtractTo(At(target));
    EXPECT_EQ(ReadFile(target + "/a/b"), "ab");
    EXPECT_EQ(ReadFile(target + "/top"), "t");
    EXPECT_EQ(ReadFile(target + "/x/y/z"), "deep");
}

// Archives from strangers must not place a file outside the target folder.
TEST_F(ArchiveFileTest, HostileNamesFailTheExtractionAndWriteNothingOutside) {
    const std::string outside = m_folder.PathOf("outside");
    fs::create_directory(outside);
    const std::string target = m_folder.PathOf("out");
    fs::create_directories(target);
    fs::create_directory_symlink(outside, target + "/link");
    for (const char* name : {"../evil", "a/../../evil", "//evil", "..\\evil", "a\\..\\..\\evil",
                             "link/evil", "..", "/"}) {
        SCOPED_TRACE(name);
        ArchiveFile archive(At(Make({{"fine", "f"}, {name, "bad"}})));
        try {
            archive.ExtractTo(At(target));
            ADD_FAILURE() << "extracted";
        } catch (const ArchiveException& e) {
            EXPECT_EQ(std::string(e.what()),
                      "Failed to extract archive file to folder: '" + target + "'.");
        }
        EXPECT_TRUE(fs::is_empty(outside));
        EXPECT_FALSE(fs::exists(m_folder.PathOf("evil")));
    }
}

}  // namespace
