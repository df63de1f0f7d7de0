#pragma once

#include <memory>
#include <vector>

#include "cli/Command.h"

namespace Morvelan::Tool {

// `morvelan blockfile SUBCOMMAND FILE`: shows and checks block files without
// opening them for writing, so a damaged file stays as it was found.
class BlockfileCommand final : public Command {
public:
    explicit BlockfileCommand(CLI::App& parent);
    int Run() override;

private:
    std::vector<std::unique_ptr<Command>> m_subcommands;
};

}  // namespace Morvelan::Tool
