// Runs `morvelan archive` as a user would: whole trees through create and
// extract, damaged and hostile archives, and the command line's errors.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "tests/support/FileTree.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ToolRun.h"

namespace {

namespace fs = std::filesystem;
using Morvelan::Testing::MakeTree;
using Morvelan::Testing::MixedBytes;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::RunTool;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::ToolRun;
using Morvelan::Testing::Tree;
using Morvelan::Testing::WriteFile;

// The name column of `list`, header line left out.
std::vector<std::string> ListedNames(const std::string& listing) {
    std::vector<std::string> names;
    std::size_t start = listing.find('\n') + 1;
    while (start < listing.size()) {
        const std::size_t end = listing.find('\n', start);
        const std::string line = listing.substr(start, end - start);
        names.push_back(line.substr(line.find("  ", line.rfind('%')) + 2));
        start = end + 1;
    }
    return names;
}

class ArchiveRoundTripTest : public testing::TestWithParam<const char*> {};

TEST_P(ArchiveRoundTripTest, ExtractsTheTreeThatWasArchived) {
    ScopedTempFolder folder;
    MakeTree(folder.PathOf("dir"));
    const std::string method = GetParam();
    ASSERT_EQ(RunTool("archive create --method " + method + " t.arc dir", folder).status, 0);

    const ToolRun listed = RunTool("archive list t.arc", folder);
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(ListedNames(listed.out),
              (std::vector<std::string>{"dir/a.txt", "dir/sub/deeper/big.bin", "dir/sub/empty",
                                        "dir/über.txt"}));
    EXPECT_NE(listed.out.find(method + " "), std::string::npos);

    const ToolRun verified = RunTool("archive verify t.arc", folder);
    EXPECT_EQ(verified.status, 0);
    EXPECT_EQ(verified.out, "4 entries verified\n");

    const ToolRun extracted = RunTool("archive extract t.arc -C out", folder);
    EXPECT_EQ(extracted.status, 0) << extracted.err;
    EXPECT_EQ(Tree(folder.PathOf("out/dir")), Tree(folder.PathOf("dir")));
}

INSTANTIATE_TEST_SUITE_P(Methods, ArchiveRoundTripTest,
                         testing::Values("stored", "deflated", "quicklz"));

TEST(ArchiveCommandTest, NamesEntriesAsTarDoes) {
    struct Case {
        std::string paths;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {"dir", {"dir/a.txt", "dir/b/c.txt"}},
        {"dir/", {"dir/a.txt", "dir/b/c.txt"}},
        {"dir/b/c.txt dir/a.txt", {"c.txt", "a.txt"}},
        {"./dir/b/../b", {"b/c.txt"}},
    };
    for (const Case& c : cases) {
        ScopedTempFolder folder;
        fs::create_directories(folder.PathOf("dir/b"));
        WriteFile(folder.PathOf("dir/a.txt"), "a");
        WriteFile(folder.PathOf("dir/b/c.txt"), "c");
        ASSERT_EQ(RunTool("archive create t.arc " + c.paths, folder).status, 0) << c.paths;
        EXPECT_EQ(ListedNames(RunTool("archive list t.arc", folder).out), c.names) << c.paths;
    }
}

TEST(ArchiveCommandTest, SkipsSymbolicLinksWithAWarningAndNeverLoops) {
    ScopedTempFolder folder;
    fs::create_directories(folder.PathOf("dir"));
    WriteFile(folder.PathOf("dir/a.txt"), "a");
    fs::create_directory_symlink("..", folder.PathOf("dir/up"));
    fs::create_symlink("a.txt", folder.PathOf("dir/again.txt"));
    const ToolRun created = RunTool("archive create t.arc dir", folder);
    EXPECT_EQ(created.status, 0);
    EXPECT_EQ(created.err,
              "morvelan archive create: skipping symbolic link 'dir/again.txt'\n"
              "morvelan archive create: skipping symbolic link 'dir/up'\n");
    EXPECT_EQ(ListedNames(RunTool("archive list t.arc", folder).out),
              std::vector<std::string>{"dir/a.txt"});
}

TEST(ArchiveCommandTest, CatWritesOneEntryOrNamesTheMissingOne) {
    struct Case {
        std::string arguments;
        int status;
        std::string out;
        std::string err;
    };
    const Case cases[] = {
        {"archive cat t.arc dir/b.txt", 0, "bravo\n", ""},
        {"archive cat - dir/a.txt <t.arc", 0, "alpha\n", ""},
        {"archive cat t.arc dir/none", 1, "",
         "morvelan archive cat: There is no entry 'dir/none' in the archive.\n"},
    };
    ScopedTempFolder folder;
    fs::create_directories(folder.PathOf("dir"));
    WriteFile(folder.PathOf("dir/a.txt"), "alpha\n");
    WriteFile(folder.PathOf("dir/b.txt"), "bravo\n");
    ASSERT_EQ(RunTool("archive create t.arc dir", folder).status, 0);
    for (const Case& c : cases) {
        const ToolRun outcome = RunTool(c.arguments, folder);
        EXPECT_EQ(outcome.status, c.status) << c.arguments;
        EXPECT_EQ(outcome.out, c.out) << c.arguments;
        EXPECT_EQ(outcome.err, c.err) << c.arguments;
    }
}

TEST(ArchiveCommandTest, StreamsThroughStandardOutputAndInput) {
    ScopedTempFolder folder;
    MakeTree(folder.PathOf("dir"));
    const ToolRun created = RunTool("archive create --method quicklz - dir", folder);
    ASSERT_EQ(created.status, 0);
    WriteFile(folder.PathOf("saved.arc"), created.out);
    EXPECT_EQ(RunTool("archive verify - <saved.arc", folder).out, "4 entries verified\n");

    const ToolRun piped = RunTool(
        std::string("archive create - dir | ") + MORVELAN_TOOL + " archive extract - -C out -v",
        folder);
    EXPECT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(piped.out, "dir/a.txt\ndir/sub/deeper/big.bin\ndir/sub/empty\ndir/über.txt\n");
    EXPECT_EQ(Tree(folder.PathOf("out/dir")), Tree(folder.PathOf("dir")));
}

// With room reserved the header is rewritten in place; without, the
// archive is rewritten and grows with a longer header.
TEST(ArchiveCommandTest, ChangesHeadersInPlaceOrByCopy) {
    struct Case {
        std::string reserve;
        bool sameSize;
    };
    for (const Case& c : {Case{"256", true}, Case{"0", false}}) {
        ScopedTempFolder folder;
        WriteFile(folder.PathOf("f.txt"), "data");
        ASSERT_EQ(RunTool("archive create --reserve " + c.reserve +
                              " --header project=atlas --header stage=draft t.arc f.txt",
                          folder)
                      .status,
                  0);
        const auto sizeBefore = fs::file_size(folder.PathOf("t.arc"));
        EXPECT_EQ(RunTool("archive header t.arc", folder).out,
                  "# reserved header size: " + c.reserve + "\nproject=atlas\nstage=draft\n");
        ASSERT_EQ(RunTool("archive header t.arc --clear stage --set owner=ann --set project=zenith",
                          folder)
                      .status,
                  0);
        EXPECT_EQ(RunTool("archive header t.arc", folder).out,
                  "# reserved header size: " + c.reserve + "\nowner=ann\nproject=zenith\n");
        EXPECT_EQ(fs::file_size(folder.PathOf("t.arc")) == sizeBefore, c.sameSize) << c.reserve;
        EXPECT_EQ(RunTool("archive cat t.arc f.txt", folder).out, "data");
        EXPECT_EQ(Tree(folder.GetPath()).size(), 2u) << "no copy left behind";
    }
}

TEST(ArchiveCommandTest, NamesTheEntryThatFailsItsCheck) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("x"), std::string(1000, 'a'));
    ASSERT_EQ(RunTool("archive create --method stored t.arc x", folder).status, 0);
    std::string bytes = ReadFile(folder.PathOf("t.arc"));
    bytes[bytes.size() - 500] ^= 1;  // inside the stored data
    WriteFile(folder.PathOf("t.arc"), bytes);
    fs::remove(folder.PathOf("x"));

    const ToolRun verified = RunTool("archive verify t.arc", folder);
    EXPECT_EQ(verified.status, 1);
    EXPECT_EQ(verified.out, "");
    EXPECT_EQ(verified.err,
              "morvelan archive verify: entry 'x': Failed to read archive entry: entry crc check "
              "failed.\n");
    EXPECT_EQ(RunTool("archive extract t.arc", folder).status, 1);
    EXPECT_FALSE(fs::exists(folder.PathOf("x"))) << "a damaged file is not left behind";
}

TEST(ArchiveCommandTest, RefusesEntriesLeadingOutsideTheFolder) {
    for (const char* name : {"../evil", "/../evil", "sub/../../evil", "link/evil"}) {
        ScopedTempFolder folder;
        fs::create_directories(folder.PathOf("out"));
        fs::create_directories(folder.PathOf("outside"));
        fs::create_directory_symlink("../outside", folder.PathOf("out/link"));
        {
            using namespace Morvelan::Common::IO;
            FileOBinaryChannel file(Morvelan::Testing::At(folder.PathOf("t.arc")), false,
                                    FileShare::None);
            ArchiveOBinaryChannel archive(file, 0);
            archive.PutNextEntry(name, ArchiveEntry::Stored);
            archive.Write("gotcha", 6);
            archive.Close();
        }
        const ToolRun outcome = RunTool("archive extract t.arc -C out", folder);
        EXPECT_EQ(outcome.status, 1) << name;
        EXPECT_NE(outcome.err.find("leads outside the target folder"), std::string::npos)
            << outcome.err;
        EXPECT_TRUE(fs::is_empty(folder.PathOf("outside"))) << name;
        EXPECT_FALSE(fs::exists(folder.PathOf("evil"))) << name;
    }
}

TEST(ArchiveCommandTest, AFailedCreateLeavesTheOldArchiveAlone) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("t.arc"), "old");
    WriteFile(folder.PathOf("a.txt"), "a");
    const ToolRun outcome = RunTool("archive create t.arc a.txt missing.txt", folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("File is not found."), std::string::npos) << outcome.err;
    EXPECT_EQ(ReadFile(folder.PathOf("t.arc")), "old");
    EXPECT_EQ(Tree(folder.GetPath()).size(), 2u) << "no temporary file left";
}

TEST(ArchiveCommandTest, RejectsMisuseWithStatusTwo) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("a.txt"), "a");
    for (const char* arguments :
         {"archive", "archive frobnicate", "archive create t.arc", "archive list",
          "archive create --method zip t.arc a.txt", "archive create --level 10 t.arc a.txt",
          "archive create --reserve 100 t.arc a.txt", "archive create --header x t.arc a.txt",
          "archive header -", "archive header t.arc --set =v", "archive cat t.arc"})
        EXPECT_EQ(RunTool(arguments, folder).status, 2) << arguments;
    EXPECT_FALSE(fs::exists(folder.PathOf("t.arc")));
    EXPECT_EQ(RunTool("archive create --help", folder).status, 0);
}

}  // namespace
