// Runs the built tool as a user would and checks what it prints.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/ScopedTempFolder.h"

namespace {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

Outcome RunTool(const std::string& arguments, const std::string& folder) {
    const std::string command = std::string(MORVELAN_TOOL) + " " + arguments + " >" + folder +
                                "/out.txt 2>" + folder + "/err.txt";
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Slurp(folder + "/out.txt"),
            Slurp(folder + "/err.txt")};
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

TEST(Crc32CommandTest, PrintsChecksumAndSizeOfEachFile) {
    Morvelan::Testing::ScopedTempFolder folder;
    const std::string digits = folder.GetPath() + "/digits";
    const std::string empty = folder.GetPath() + "/empty";
    WriteFile(digits, "123456789");
    WriteFile(empty, "");
    const Outcome outcome = RunTool("crc32 " + digits + " " + empty, folder.GetPath());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "cbf43926 9 " + digits + "\n00000000 0 " + empty + "\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(Crc32CommandTest, ReadsStandardInputWithoutAName) {
    Morvelan::Testing::ScopedTempFolder folder;
    WriteFile(folder.GetPath() + "/in", "123456789");
    const Outcome outcome = RunTool("crc32 <" + folder.GetPath() + "/in", folder.GetPath());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "cbf43926 9\n");
}

TEST(Crc32CommandTest, ReportsAMissingFileAndGoesOn) {
    Morvelan::Testing::ScopedTempFolder folder;
    const std::string present = folder.GetPath() + "/present";
    WriteFile(present, std::string(1 << 20, 'a'));
    const Outcome outcome =
        RunTool("crc32 " + folder.GetPath() + "/absent " + present, folder.GetPath());
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
    EXPECT_EQ(RunTool("frobnicate", folder.GetPath()).status, 2);
    EXPECT_EQ(RunTool("", folder.GetPath()).status, 2);
    EXPECT_EQ(RunTool("--help", folder.GetPath()).status, 0);
}

}  // namespace
