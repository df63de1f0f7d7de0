#pragma once

#include <string>

#include "cli/Command.h"

namespace Morvelan::Tool {

// One subcommand of `morvelan archive` or `morvelan zip`. Run reports a
// failure as one line on standard error, "morvelan archive NAME: " (or zip)
// and what went wrong, and
// exits with 1 (130 when canceled with Ctrl-C); a derived class only does
// the work.
class ArchiveSubcommand : public Command {
public:
    int Run() final;

protected:
    ArchiveSubcommand(CLI::App& archive, const std::string& name, const std::string& description);
    virtual void Execute() = 0;
    // A line on standard error that does not stop the work.
    void Warn(const std::string& text) const;
    // For the subcommands that draw their progress: -q,--quiet turns it off.
    void AddQuietFlag();
    bool IsQuiet() const { return m_quiet; }

private:
    std::string m_name;  // "archive create", "zip list", ...
    bool m_quiet = false;
};

}  // namespace Morvelan::Tool
