#include "cli/ArchiveCommand.h"

#include "cli/ArchiveCatCommand.h"
#include "cli/ArchiveCreateCommand.h"
#include "cli/ArchiveExtractCommand.h"
#include "cli/ArchiveHeaderCommand.h"
#include "cli/ArchiveListCommand.h"
#include "cli/ArchiveVerifyCommand.h"

namespace Morvelan::Tool {

ArchiveCommand::ArchiveCommand(CLI::App& parent) {
    m_subcommand = parent.add_subcommand("archive", "Create, list, extract and check archives");
    m_subcommand->require_subcommand(1);
    CLI::App& archive = *m_subcommand;
    m_subcommands.push_back(std::make_unique<ArchiveCreateCommand>(archive));
    m_subcommands.push_back(std::make_unique<ArchiveListCommand>(archive));
    m_subcommands.push_back(std::make_unique<ArchiveExtractCommand>(archive));
    m_subcommands.push_back(std::make_unique<ArchiveVerifyCommand>(archive));
    m_subcommands.push_back(std::make_unique<ArchiveCatCommand>(archive));
    m_subcommands.push_back(std::make_unique<ArchiveHeaderCommand>(archive));
}

int ArchiveCommand::Run() {
    for (auto& subcommand : m_subcommands)
        if (subcommand->IsChosen()) return subcommand->Run();
    return 2;
}

}  // namespace Morvelan::Tool
