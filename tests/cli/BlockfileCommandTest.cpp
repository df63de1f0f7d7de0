// Runs `morvelan blockfile` on block files written byte by byte: what info
// shows, what check finds and how both fail on a file they cannot read.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/BlockFileImage.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ToolRun.h"

namespace {

namespace Format = Morvelan::Common::Containers::BlockFileFormat;
using Morvelan::Testing::BlockFileImage;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::RunTool;
using Morvelan::Testing::ScopedTempFolder;
using Morvelan::Testing::ToolRun;
using Morvelan::Testing::WriteFile;

// Five blocks of 64 bytes: the header, a master-list block naming blocks 2
// and `masterEntry`, two client blocks and block 4, free, whose next field
// is `nextFree`.
std::string FiveBlocks(Yr::UInt32 masterEntry, Yr::UInt32 nextFree) {
    BlockFileImage image(64, 5);
    image.SetFields(0, {1, 4, 1}, Format::kMasterListHeadOffset);
    image.SetFields(1, {0, 2, 2, masterEntry});
    image.SetFields(4, {nextFree});
    return image.Bytes();
}

TEST(BlockfileCommandTest, ShowsAndPassesASoundFile) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("sound.blk"), FiveBlocks(3, 0));
    const ToolRun info = RunTool("blockfile info sound.blk", folder);
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
    const ToolRun check = RunTool("blockfile check sound.blk", folder);
    EXPECT_EQ(check.status, 0);
    EXPECT_EQ(check.out, "ok: 5 blocks of 64 bytes, 1 free, 2 master blocks\n");
}

TEST(BlockfileCommandTest, ListsEveryFaultOfADamagedFileAndLeavesItAsItWas) {
    ScopedTempFolder folder;
    const std::string damaged = FiveBlocks(9, 4);
    WriteFile(folder.PathOf("damaged.blk"), damaged);
    const ToolRun check = RunTool("blockfile check damaged.blk", folder);
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out,
              "free list: block 4 points back to block 4, a cycle\n"
              "master list: block 1 entry 1 names block 9, past the block count\n"
              "damaged: 2 problems\n");
    const ToolRun info = RunTool("blockfile info damaged.blk", folder);
    EXPECT_EQ(info.status, 0);
    EXPECT_NE(info.out.find("\nproblems:           2 (morvelan blockfile check lists them)\n"),
              std::string::npos)
        << info.out;
    EXPECT_EQ(ReadFile(folder.PathOf("damaged.blk")), damaged);
}

TEST(BlockfileCommandTest, FailsWithStatusTwoOnAFileItCannotRead) {
    ScopedTempFolder folder;
    for (const std::string command : {"info", "check"}) {
        const ToolRun run = RunTool("blockfile " + command + " none.blk", folder);
        EXPECT_EQ(run.status, 2) << command;
        EXPECT_EQ(run.out, "") << command;
        EXPECT_EQ(run.err, "morvelan blockfile " + command + ": File is not found: '" +
                               folder.PathOf("none.blk") + "'.\n");
    }
    EXPECT_EQ(RunTool("blockfile check", folder).status, 2);
}

}  // namespace
