#include "cli/ZipCommand.h"

#include "cli/ZipCreateCommand.h"
#include "cli/ZipExtractCommand.h"
#include "cli/ZipListCommand.h"
#include "cli/ZipTestCommand.h"

namespace Morvelan::Tool {

ZipCommand::ZipCommand(CLI::App& parent) {
    m_subcommand = parent.add_subcommand("zip", "Create, list, extract and test zip files");
    m_subcommand->require_subcommand(1);
    CLI::App& zip = *m_subcommand;
    m_subcommands.push_back(std::make_unique<ZipCreateCommand>(zip));
    m_subcommands.push_back(std::make_unique<ZipListCommand>(zip));
    m_subcommands.push_back(std::make_unique<ZipExtractCommand>(zip));
    m_subcommands.push_back(std::make_unique<ZipTestCommand>(zip));
}

int ZipCommand::Run() {
    for (auto& subcommand : m_subcommands)
        if (subcommand->IsChosen()) return subcommand->Run();
    return 2;
}

}  // namespace Morvelan::Tool
