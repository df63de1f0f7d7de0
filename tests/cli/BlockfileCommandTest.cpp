// Runs `morvelan blockfile` on block files written byte by byte: what info
// shows, what check finds and how both fail on a file they cannot read.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "Common/Containers/BlockFileFormat.h"
#include "tests/support/PeerProcess.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Testing::Quoted;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::WriteFile;

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

// `arguments` is shell text run in `folder`; the captured streams go beside it.
Outcome RunTool(const std::string& arguments, const ScopedTempFolder& folder) {
    const std::string out = folder.PathOf(".out"), err = folder.PathOf(".err");
    const std::string command = "cd " + Quoted(folder.GetPath()) + " && " + MORVELAN_TOOL + " " +
                                arguments + " >" + out + " 2>" + err;
    const int raw = std::system(command.c_str());
    const Outcome outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFile(out), ReadFile(err)};
    std::filesystem::remove(out);
    std::filesystem::remove(err);
    return outcome;
}

// Five blocks of 64 bytes, each given by its leading 32-bit fields: the
// header, a master-list block naming blocks 2 and 3, two client blocks
// and block 4, free, whose next field is `nextFree`.
std::string FiveBlocks(Yr::UInt32 masterEntry, Yr::UInt32 nextFree) {
    const std::vector<std::vector<Yr::UInt32>> blocks = {
        {Format::kMagic, 1, 0, 0, 5, 64, 1, 4, 1}, {0, 2, 2, masterEntry}, {}, {}, {nextFree}};
    std::string bytes(5 * 64, '\0');
    for (std::size_t block = 0; block < blocks.size(); ++block)
        for (std::size_t i = 0; i < blocks[block].size(); ++i)
            Format::WriteField(bytes.data(), Yr::UInt32(block * 64 + i * 4), blocks[block][i]);
    return bytes;
}

TEST(BlockfileCommandTest, ShowsAndPassesASoundFile) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("sound.blk"), FiveBlocks(3, 0));
    const Outcome info = RunTool("blockfile info sound.blk", folder);
    EXPECT_EQ(info.status, 0);
    EXPECT_EQ(info.out,
              "magic:              YrBF\n"
              "version:            1.0\n"
              "block count:        5\n"
              "block size:         64\n"
              "file size:          320\n"
              "master list head:   1\n"
              "free list head:     4\n"
              "free block count:   1\n"
              "free list length:   1\n"
              "master list blocks: 1 (1)\n"
              "master blocks:      2 (2 3)\n");
    const Outcome check = RunTool("blockfile check sound.blk", folder);
    EXPECT_EQ(check.status, 0);
    EXPECT_EQ(check.out, "ok: 5 blocks of 64 bytes, 1 free, 2 master blocks\n");
}

TEST(BlockfileCommandTest, ListsEveryFaultOfADamagedFileAndLeavesItAsItWas) {
    ScopedTempFolder folder;
    const std::string damaged = FiveBlocks(9, 4);
    WriteFile(folder.PathOf("damaged.blk"), damaged);
    const Outcome check = RunTool("blockfile check damaged.blk", folder);
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out,
              "free list: block 4 points back to block 4, a cycle\n"
              "master list: block 1 entry 1 names block 9, past the block count\n"
              "damaged: 2 problems\n");
    const Outcome info = RunTool("blockfile info damaged.blk", folder);
    EXPECT_EQ(info.status, 0);
    EXPECT_NE(info.out.find("\nproblems:           2 (morvelan blockfile check lists them)\n"),
              std::string::npos)
        << info.out;
    EXPECT_EQ(ReadFile(folder.PathOf("damaged.blk")), damaged);
}

TEST(BlockfileCommandTest, FailsWithStatusTwoOnAFileItCannotRead) {
    ScopedTempFolder folder;
    for (const char* command : {"info", "check"}) {
        const Outcome outcome = RunTool(std::string("blockfile ") + command + " none.blk", folder);
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.out, "") << command;
        EXPECT_EQ(outcome.err, std::string("morvelan blockfile ") + command +
                                   ": File is not found: '" + folder.PathOf("none.blk") + "'.\n");
    }
    EXPECT_EQ(RunTool("blockfile check", folder).status, 2);
}

}  // namespace
