#include "cli/BlockfileSubcommand.h"

#include <cstdio>
#include <exception>

#include "Yr/YrException.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {

BlockfileSubcommand::BlockfileSubcommand(CLI::App& blockfile, const std::string& name,
                                         const std::string& description)
    : m_name(name) {
    m_subcommand = blockfile.add_subcommand(name, description);
    m_subcommand->add_option("FILE", m_file, "The block file, read only")->required();
}

int BlockfileSubcommand::Run() {
    std::string failure;
    try {
        return Execute();
    } catch (const Yr::YrException& exception) {
        failure = DescribeFailure(exception);
    } catch (const std::exception& exception) {
        failure = exception.what();
    }
    // What was printed so far comes first, as the user would read it.
    std::fflush(stdout);
    std::fprintf(stderr, "morvelan blockfile %s: %s\n", m_name.c_str(), failure.c_str());
    return kUsageOrFileError;
}

}  // namespace Morvelan::Tool
