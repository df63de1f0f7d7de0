#include "cli/ArchiveSubcommand.h"

#include <cstdio>
#include <exception>

#include "Yr/YrException.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {

ArchiveSubcommand::ArchiveSubcommand(CLI::App& archive, const std::string& name,
                                     const std::string& description)
    : m_name(name) {
    m_subcommand = archive.add_subcommand(name, description);
}

int ArchiveSubcommand::Run() {
    try {
        Execute();
        return 0;
    } catch (const Yr::YrException& failure) {
        Warn(DescribeFailure(failure));
    } catch (const std::exception& failure) {
        Warn(failure.what());
    }
    return 1;
}

void ArchiveSubcommand::Warn(const std::string& text) const {
    // What was printed so far comes first, as the user would read it.
    std::fflush(stdout);
    std::fprintf(stderr, "morvelan archive %s: %s\n", m_name.c_str(), text.c_str());
}

}  // namespace Morvelan::Tool
