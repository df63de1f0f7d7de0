#pragma once

#include <string>
#include <vector>

#include "Yr/OBinaryChannel.h"
#include "cli/ArchiveSource.h"
#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

class JobProgress;

// `morvelan zip create ZIPFILE PATH...`: a zip file of files and of folders
// with everything below them, named as `archive create` names them. It is
// written under a temporary name and renamed into place once complete.
class ZipCreateCommand final : public ArchiveSubcommand {
public:
    explicit ZipCreateCommand(CLI::App& zip);

protected:
    void Execute() override;

private:
    void WriteZip(const std::vector<ArchiveSource>& sources, Yr::OBinaryChannel& output,
                  JobProgress& progress) const;

    std::string m_zip;
    std::vector<std::string> m_paths;
    std::string m_method = "deflated";
    int m_level = -1;
    std::string m_comment;
};

}  // namespace Morvelan::Tool
