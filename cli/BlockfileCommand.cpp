#include "cli/BlockfileCommand.h"

#include "cli/BlockfileCheckCommand.h"
#include "cli/BlockfileInfoCommand.h"

namespace Morvelan::Tool {

BlockfileCommand::BlockfileCommand(CLI::App& parent) {
    m_subcommand = parent.add_subcommand("blockfile", "Show and check block files");
    m_subcommand->require_subcommand(1);
    CLI::App& blockfile = *m_subcommand;
    m_subcommands.push_back(std::make_unique<BlockfileInfoCommand>(blockfile));
    m_subcommands.push_back(std::make_unique<BlockfileCheckCommand>(blockfile));
}

int BlockfileCommand::Run() {
    for (auto& subcommand : m_subcommands)
        if (subcommand->IsChosen()) return subcommand->Run();
    return BlockfileSubcommand::kUsageOrFileError;
}

}  // namespace Morvelan::Tool
