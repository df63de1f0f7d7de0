#include "cli/BlockfileCheckCommand.h"

#include <cstdio>
#include <string>

#include "Common/Containers/BlockFileScanner.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

std::string Counted(unsigned long long count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

BlockfileCheckCommand::BlockfileCheckCommand(CLI::App& blockfile)
    : BlockfileSubcommand(blockfile, "check",
                          "Check the header, the free list and the master list of a block file") {}

int BlockfileCheckCommand::Execute() {
    const Common::Containers::BlockFileScanner scanner(LocationOfArgument(GetFile()));
    for (const auto& fault : scanner.GetFaults()) std::printf("%s\n", fault.text.ToPrintf());
    if (!scanner.IsClean()) {
        std::printf("damaged: %s\n",
                    Counted(scanner.GetFaults().size(), "problem", "problems").c_str());
        return kDamaged;
    }
    const auto& header = scanner.GetHeader();
    std::printf("ok: %s of %s, %s free, %s\n",
                Counted(header.blockCount, "block", "blocks").c_str(),
                Counted(header.blockSize, "byte", "bytes").c_str(),
                std::to_string(scanner.GetFreeListLength()).c_str(),
                Counted(scanner.GetMasterBlocks().size(), "master block", "master blocks").c_str());
    return 0;
}

}  // namespace Morvelan::Tool
