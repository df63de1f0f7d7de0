#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan archive list ARCHIVE [--long]`: one line per entry with its
// method, size, archived size, space saved, CRC-32 and name; --long adds the
// entry's headers below it. Every entry is read and checked on the way.
class ArchiveListCommand final : public ArchiveSubcommand {
public:
    explicit ArchiveListCommand(CLI::App& archive);

protected:
    void Execute() override;

private:
    std::string m_archive;
    bool m_long = false;
};

}  // namespace Morvelan::Tool
