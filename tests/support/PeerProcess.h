#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "tests/support/TestFiles.h"

namespace Morvelan::Testing {

// Running another program as a peer of a test: finding it, quoting its
// arguments for the shell and collecting what it prints.

// Single quotes for /bin/sh, whatever the text holds.
inline std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// The executable `name` in a folder of PATH, or empty.
inline std::string FindOnPath(const char* name) {
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "";
    for (;;) {
        const std::size_t colon = rest.find(':');
        std::string folder(rest.substr(0, colon));
        const std::string candidate = (folder.empty() ? "." : folder) + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0) return candidate;
        if (colon == std::string_view::npos) return {};
        rest.remove_prefix(colon + 1);
    }
}

struct Outcome {
    int status;       // the exit status, -1 when the command did not exit normally
    std::string out;  // standard output only; standard error goes to the test's log
};

inline Outcome RunCommand(const std::string& command) {
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return {-1, "cannot run: " + command};
    std::string out;
    char buffer[512];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe))
        out.append(buffer, count);
    const int raw = ::pclose(pipe);
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, out};
}

}  // namespace Morvelan::Testing
