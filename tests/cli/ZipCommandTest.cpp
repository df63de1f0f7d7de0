// `morvelan zip` against the zip tools people use, both ways: what we write
// they test and extract; what they write, streamed or not, we extract.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/FileTree.h"
#include "tests/support/PeerProcess.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ToolRun.h"

namespace {

namespace fs = std::filesystem;
using Morvelan::Testing::MakeTree;
using Morvelan::Testing::Quoted;
using Morvelan::Testing::RunTool;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::ToolRun;
using Morvelan::Testing::Tree;
using Morvelan::Testing::WriteFile;

// A shell command run in `folder`; its exit status.
int Shell(const std::string& command, const ScopedTempFolder& folder) {
    const int raw = std::system(
        ("cd " + Quoted(folder.GetPath()) + " && (" + command + ") >/dev/null 2>&1").c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

// Extracts with Python's zipfile, as a third reader next to unzip and bsdtar.
const char* const kPythonExtract =
    "python3 -c 'import sys, zipfile; zipfile.ZipFile(sys.argv[1]).extractall(sys.argv[2])' ";

class ZipRoundTripTest : public testing::TestWithParam<const char*> {};

TEST_P(ZipRoundTripTest, PeersTestAndExtractWhatWeWrite) {
    ScopedTempFolder folder;
    MakeTree(folder.PathOf("tree"));
    const ToolRun created = RunTool(
        std::string("zip create --method ") + GetParam() + " --comment 'made here' out.zip tree",
        folder);
    ASSERT_EQ(created.status, 0) << created.err;
    const char* const checks[] = {"unzip -t -q out.zip", "python3 -m zipfile -t out.zip",
                                  "bsdtar -tf out.zip"};
    for (const char* check : checks) EXPECT_EQ(Shell(check, folder), 0) << check;
    const char* const extractions[] = {"unzip -q out.zip -d by-unzip",
                                       "mkdir by-bsdtar && bsdtar -xf out.zip -C by-bsdtar"};
    for (const char* extraction : extractions) EXPECT_EQ(Shell(extraction, folder), 0);
    EXPECT_EQ(Shell(std::string(kPythonExtract) + "out.zip by-python", folder), 0);
    // Java decodes file names by the locale: one that has UTF-8.
    EXPECT_EQ(Shell("javac -d classes " + Quoted(JAVA_ZIP_PEER_SOURCE) +
                        " && LC_ALL=C.UTF-8 java -cp classes ZipPeer --extract out.zip by-java",
                    folder),
              0);
    const auto expected = Tree(folder.PathOf("tree"));
    for (const char* reader : {"by-unzip", "by-bsdtar", "by-python", "by-java"})
        EXPECT_EQ(Tree(folder.PathOf(reader) + "/tree"), expected) << reader;
}

INSTANTIATE_TEST_SUITE_P(Methods, ZipRoundTripTest, testing::Values("stored", "deflated"));

TEST(ZipCommandTest, ExtractsWhatPeersWrite) {
    // Piped output makes Info-ZIP and Java write data descriptors.
    const char* const writers[] = {
        "zip -r -q peer.zip tree",
        "zip -r -q -0 peer.zip tree",
        "zip -r -q - tree | cat >peer.zip",
        "zip -r -q -0 - tree | cat >peer.zip",
        "bsdtar --format zip -cf peer.zip tree",
        "jar --create --no-manifest --file peer.zip tree",
        "python3 -c 'import os, zipfile\n"
        "with zipfile.ZipFile(\"peer.zip\", \"w\", zipfile.ZIP_DEFLATED) as z:\n"
        "    for d, _, fs in os.walk(\"tree\"):\n"
        "        for f in fs:\n"
        "            p = os.path.join(d, f)\n"
        "            with open(p, \"rb\") as i, z.open(p, \"w\", force_zip64=True) as o:\n"
        "                o.write(i.read())'",
    };
    for (const char* writer : writers) {
        SCOPED_TRACE(writer);
        ScopedTempFolder folder;
        MakeTree(folder.PathOf("tree"));
        ASSERT_EQ(Shell(writer, folder), 0);
        const ToolRun tested = RunTool("zip test peer.zip", folder);
        EXPECT_EQ(tested.status, 0) << tested.err;
        const ToolRun extracted = RunTool("zip extract - -C out <peer.zip", folder);
        EXPECT_EQ(extracted.status, 0) << extracted.err;
        EXPECT_EQ(Tree(folder.PathOf("out/tree")), Tree(folder.PathOf("tree")));
    }
}

TEST(ZipCommandTest, ListsEntriesWithTheirComment) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("a.txt"), "alpha\n");
    ASSERT_EQ(Shell("echo 'a comment' | zip -q -z peer.zip a.txt", folder), 0);
    const ToolRun listed = RunTool("zip list - <peer.zip", folder);
    ASSERT_EQ(listed.status, 0) << listed.err;
    // Info-ZIP stores what deflate would only make larger.
    EXPECT_EQ(listed.out.substr(listed.out.find('\n') + 1, 51),
              "stored              6            6    0.0% 9f606eec");
    EXPECT_NE(listed.out.find("  a.txt\ncomment: a comment\n"), std::string::npos) << listed.out;
}

TEST(ZipCommandTest, ListsAndStreamsThroughPipes) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("a.txt"), "alpha\n");
    const ToolRun piped =
        RunTool("zip create - a.txt | " + std::string(MORVELAN_TOOL) + " zip list -", folder);
    ASSERT_EQ(piped.status, 0) << piped.err;
    EXPECT_NE(piped.out.find("deflated"), std::string::npos);
    EXPECT_NE(piped.out.find("6 "), std::string::npos);
    EXPECT_NE(piped.out.find("a.txt\n"), std::string::npos);
}

TEST(ZipCommandTest, RefusesEntriesLeadingOutsideTheFolder) {
    ScopedTempFolder folder;
    ASSERT_EQ(Shell("python3 -c 'import zipfile\n"
                    "with zipfile.ZipFile(\"evil.zip\", \"w\") as z:\n"
                    "    z.writestr(\"../escaped.txt\", \"x\")'",
                    folder),
              0);
    const ToolRun run = RunTool("zip extract evil.zip -C out", folder);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("morvelan zip extract: "), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(folder.PathOf("escaped.txt")));
}

}  // namespace
