#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan archive extract ARCHIVE [-C FOLDER] [-v]`: every entry as a file
// under the folder (the working folder by default). A name that would lead
// outside the folder stops the extraction, and a file whose entry fails its
// check is removed again.
class ArchiveExtractCommand final : public ArchiveSubcommand {
public:
    explicit ArchiveExtractCommand(CLI::App& archive);

protected:
    void Execute() override;

private:
    std::string m_archive;
    std::string m_folder;
    bool m_verbose = false;
};

}  // namespace Morvelan::Tool
