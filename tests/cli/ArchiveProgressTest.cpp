// The archive subcommands' progress bar on a real pseudo-terminal, and
// Ctrl-C in the middle of a job.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Testing::ReadFile;
using Morvelan::Testing::WriteFile;

const std::string kTool = MORVELAN_TOOL;

// What the terminal showed while `arguments` ran with all three streams on
// a pseudo-terminal (util-linux `script`), and the tool's exit status.
struct Screen {
    int status;
    std::string text;
};

Screen RunOnTerminal(const std::string& arguments,
                     const Morvelan::Testing::ScopedTempFolder& folder) {
    const std::string typescript = folder.PathOf(".screen");
    const std::string command = "cd " + folder.GetPath() + " && script -qec '" + kTool + " " +
                                arguments + "' /dev/null </dev/null >" + typescript;
    const int raw = std::system(command.c_str());
    return {WEXITSTATUS(raw), ReadFile(typescript)};
}

TEST(ArchiveProgressTest, DrawsTheBarOnATerminalUnlessQuiet) {
    Morvelan::Testing::ScopedTempFolder folder;
    std::filesystem::create_directory(folder.PathOf("in"));
    WriteFile(folder.PathOf("in/a"), std::string(3 << 20, 'a'));
    WriteFile(folder.PathOf("in/b"), "b");
    const char* const commands[] = {"archive create out.arc in", "archive verify out.arc",
                                    "archive extract out.arc -C restored"};
    for (const char* command : commands) {
        SCOPED_TRACE(command);
        const Screen shown = RunOnTerminal(command, folder);
        EXPECT_EQ(shown.status, 0);
        // Created from 3 MiB of files; read, from an archive of a few KiB.
        EXPECT_NE(shown.text.find("[########################] 100%"), std::string::npos);
        EXPECT_NE(shown.text.find("done\033[K\r\n"), std::string::npos);
        const Screen quiet = RunOnTerminal(std::string(command) + " --quiet", folder);
        EXPECT_EQ(quiet.status, 0);
        EXPECT_EQ(quiet.text.find('%'), std::string::npos);
    }
    EXPECT_EQ(ReadFile(folder.PathOf("restored/in/a")), std::string(3 << 20, 'a'));
}

TEST(ArchiveProgressTest, CtrlCLeavesNoArchiveBehind) {
    Morvelan::Testing::ScopedTempFolder folder;
    // 16 GiB of holes: no disk used, and far more than the job gets through
    // before the signal comes.
    std::filesystem::create_directory(folder.PathOf("in"));
    WriteFile(folder.PathOf("in/big"), "");
    std::filesystem::resize_file(folder.PathOf("in/big"), 16ull << 30);
    // Job control, so that the background job does not ignore SIGINT.
    const std::string script = "cd " + folder.GetPath() + "; set -m; " + kTool +
                               " archive create out.arc in 2>err & pid=$!; sleep 0.5; "
                               "kill -INT $pid; wait $pid; echo $? >status";
    ASSERT_EQ(std::system(("bash -c '" + script + "' 2>/dev/null").c_str()), 0);
    EXPECT_EQ(ReadFile(folder.PathOf("status")), "130\n");
    EXPECT_EQ(ReadFile(folder.PathOf("err")), "morvelan archive create: Canceled.\n");
    // Neither the archive nor its temporary file.
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.GetPath()))
        names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"err", "in", "status"}));
}

// The archive comes through a pipe that stalls halfway; the signal comes
// meanwhile, and the half-written file goes again.
TEST(ArchiveProgressTest, CtrlCInAnExtractionDeletesTheFileBeingWritten) {
    Morvelan::Testing::ScopedTempFolder folder;
    WriteFile(folder.PathOf("a"), std::string(3 << 20, 'a'));
    const std::string script =
        "cd " + folder.GetPath() + "; " + kTool +
        " archive create --method stored a.arc a && set -m; "
        "(head -c 1048576 a.arc; sleep 1; tail -c +1048577 a.arc) | " +
        kTool +
        " archive extract - -C out 2>err & pid=$!; sleep 0.5; kill -INT $pid; "
        "wait $pid; echo $? >status";
    ASSERT_EQ(std::system(("bash -c '" + script + "' 2>/dev/null").c_str()), 0);
    EXPECT_EQ(ReadFile(folder.PathOf("status")), "130\n");
    EXPECT_EQ(ReadFile(folder.PathOf("err")), "morvelan archive extract: Canceled.\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.PathOf("out")));
}

}  // namespace
