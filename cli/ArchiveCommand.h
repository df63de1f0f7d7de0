#pragma once

#include <memory>
#include <vector>

#include "cli/Command.h"

namespace Morvelan::Tool {

// `morvelan archive SUBCOMMAND ...`: creates, lists, extracts, verifies and
// changes archive streams, with subcommands named after what tar and zip do.
class ArchiveCommand final : public Command {
public:
    explicit ArchiveCommand(CLI::App& parent);
    int Run() override;

private:
    std::vector<std::unique_ptr<Command>> m_subcommands;
};

}  // namespace Morvelan::Tool
