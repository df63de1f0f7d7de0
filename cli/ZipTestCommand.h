#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan zip test ZIPFILE`: reads every entry, checks its size and
// CRC-32 and the central directory, and prints `N entries ok`.
class ZipTestCommand final : public ArchiveSubcommand {
public:
    explicit ZipTestCommand(CLI::App& zip);

protected:
    void Execute() override;

private:
    std::string m_zip;
};

}  // namespace Morvelan::Tool
