#pragma once

#include <string>
#include <vector>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan archive header ARCHIVE [--set NAME=VALUE] [--clear NAME]`:
// shows the archive headers, or changes them: clears first, then sets,
// written back in place when the archive reserved room, else by a copy.
class ArchiveHeaderCommand final : public ArchiveSubcommand {
public:
    explicit ArchiveHeaderCommand(CLI::App& archive);

protected:
    void Execute() override;

private:
    std::string m_archive;
    std::vector<std::string> m_sets;
    std::vector<std::string> m_clears;
};

}  // namespace Morvelan::Tool
