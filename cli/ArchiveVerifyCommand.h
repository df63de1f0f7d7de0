#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan archive verify ARCHIVE`: reads every entry and checks it against
// its trailer (sizes and CRC-32); prints how many passed, or names the
// first entry that did not.
class ArchiveVerifyCommand final : public ArchiveSubcommand {
public:
    explicit ArchiveVerifyCommand(CLI::App& archive);

protected:
    void Execute() override;

private:
    std::string m_archive;
};

}  // namespace Morvelan::Tool
