#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan archive cat ARCHIVE ENTRY`: the data of the first entry of that
// name on standard output, checked against its trailer once written.
class ArchiveCatCommand final : public ArchiveSubcommand {
public:
    explicit ArchiveCatCommand(CLI::App& archive);

protected:
    void Execute() override;

private:
    std::string m_archive;
    std::string m_entry;
};

}  // namespace Morvelan::Tool
