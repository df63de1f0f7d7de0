// Runs the built tool as a user would and checks what it prints.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"
#include "tests/support/ToolRun.h"

namespace {

using Morvelan::Testing::RunTool;
using Morvelan::Testing::ToolRun;
using Morvelan::Testing::WriteFile;

TEST(Crc32CommandTest, PrintsChecksumAndSizeOfEachFile) {
    Morvelan::Testing::ScopedTempFolder folder;
    const std::string digits = folder.GetPath() + "/digits";
    const std::string empty = folder.GetPath() + "/empty";
    WriteFile(digits, "123456789");
    WriteFile(empty, "");
    const ToolRun outcome = RunTool("crc32 " + digits + " " + empty, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "cbf43926 9 " + digits + "\n00000000 0 " + empty + "\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(Crc32CommandTest, ReadsStandardInputWithoutAName) {
    Morvelan::Testing::ScopedTempFolder folder;
    WriteFile(folder.GetPath() + "/in", "123456789");
    const ToolRun outcome = RunTool("crc32 <" + folder.GetPath() + "/in", folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "cbf43926 9\n");
}

TEST(Crc32CommandTest, ReportsAMissingFileAndGoesOn) {
    Morvelan::Testing::ScopedTempFolder folder;
    const std::string present = folder.GetPath() + "/present";
    WriteFile(present, std::string(1 << 20, 'a'));
    const ToolRun outcome = RunTool("crc32 " + folder.GetPath() + "/absent " + present, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "morvelan crc32: Failed to create file binary input channel for "
              "location: '" +
                  folder.GetPath() + "/absent'. Failed to open file. File is not found.\n");
    // 1 MiB of 'a': checked with Python's zlib.crc32.
    EXPECT_EQ(outcome.out, "d7cd5672 1048576 " + present + "\n");
}

TEST(Crc32CommandTest, RejectsUnknownCommandsAsUsageErrors) {
    Morvelan::Testing::ScopedTempFolder folder;
    EXPECT_EQ(RunTool("frobnicate", folder).status, 2);
    EXPECT_EQ(RunTool("", folder).status, 2);
    EXPECT_EQ(RunTool("--help", folder).status, 0);
}

}  // namespace
