#include "cli/ArchiveSubcommand.h"

#include <cstdio>
#include <exception>

#include "Yr/Exceptions.h"
#include "Yr/YrException.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

// What shells report for a process ended by Ctrl-C.
constexpr int kCanceledStatus = 130;

}  // namespace

ArchiveSubcommand::ArchiveSubcommand(CLI::App& archive, const std::string& name,
                                     const std::string& description)
    : m_name(archive.get_name() + " " + name) {
    m_subcommand = archive.add_subcommand(name, description);
}

int ArchiveSubcommand::Run() {
    try {
        Execute();
        return 0;
    } catch (const Yr::InterruptedException& failure) {
        Warn(DescribeFailure(failure));
        return kCanceledStatus;
    } catch (const Yr::YrException& failure) {
        Warn(DescribeFailure(failure));
    } catch (const std::exception& failure) {
        Warn(failure.what());
    }
    return 1;
}

void ArchiveSubcommand::AddQuietFlag() {
    m_subcommand->add_flag("-q,--quiet", m_quiet,
                           "Draw no progress bar (drawn only when standard error is a terminal)");
}

void ArchiveSubcommand::Warn(const std::string& text) const {
    // What was printed so far comes first, as the user would read it.
    std::fflush(stdout);
    std::fprintf(stderr, "morvelan %s: %s\n", m_name.c_str(), text.c_str());
}

}  // namespace Morvelan::Tool
