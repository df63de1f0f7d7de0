#pragma once

#include "cli/BlockfileSubcommand.h"

namespace Morvelan::Tool {

// `morvelan blockfile check FILE`: walks the free list and the master list
// and prints one line per fault, then a summary; exits with 0 when the file
// is sound and with 1 when it is damaged.
class BlockfileCheckCommand final : public BlockfileSubcommand {
public:
    explicit BlockfileCheckCommand(CLI::App& blockfile);

protected:
    int Execute() override;
};

}  // namespace Morvelan::Tool
