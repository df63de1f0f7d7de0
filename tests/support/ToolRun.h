#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/PeerProcess.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace Morvelan::Testing {

// What a run of the `morvelan` tool (MORVELAN_TOOL, set by the build of the
// command tests) gave back.
struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

// `arguments` is shell text run in `folder`; the captured streams go beside it.
inline ToolRun RunTool(const std::string& arguments, const ScopedTempFolder& folder) {
    const std::string out = folder.PathOf(".out"), err = folder.PathOf(".err");
    const std::string command = "cd " + Quoted(folder.GetPath()) + " && " + MORVELAN_TOOL + " " +
                                arguments + " >" + out + " 2>" + err;
    const int raw = std::system(command.c_str());
    const ToolRun run{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFile(out), ReadFile(err)};
    std::filesystem::remove(out);
    std::filesystem::remove(err);
    return run;
}

}  // namespace Morvelan::Testing
