#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan zip extract ZIPFILE [-C FOLDER]`: writes each entry as a file
// (or folder) under FOLDER, safely: no entry reaches outside it.
class ZipExtractCommand final : public ArchiveSubcommand {
public:
    explicit ZipExtractCommand(CLI::App& zip);

protected:
    void Execute() override;

private:
    std::string m_zip;
    std::string m_folder;
    bool m_verbose = false;
};

}  // namespace Morvelan::Tool
