#pragma once

#include <memory>
#include <vector>

#include "cli/Command.h"

namespace Morvelan::Tool {

// `morvelan zip SUBCOMMAND ...`: creates, lists, extracts and tests zip
// files that other zip tools read and write, with the conventions of
// `morvelan archive`.
class ZipCommand final : public Command {
public:
    explicit ZipCommand(CLI::App& parent);
    int Run() override;

private:
    std::vector<std::unique_ptr<Command>> m_subcommands;
};

}  // namespace Morvelan::Tool
