#pragma once

#include "cli/BlockfileSubcommand.h"

namespace Morvelan::Tool {

// `morvelan blockfile info FILE`: the header's fields, the file's size, the
// free list's length and the master blocks, one "name: value" line each.
// Damage found on the way is counted, not described: `check` does that.
class BlockfileInfoCommand final : public BlockfileSubcommand {
public:
    explicit BlockfileInfoCommand(CLI::App& blockfile);

protected:
    int Execute() override;
};

}  // namespace Morvelan::Tool
