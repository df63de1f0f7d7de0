#pragma once

#include <string>
#include <vector>

#include "Yr/OBinaryChannel.h"
#include "cli/ArchiveSource.h"
#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

class JobProgress;

// `morvelan archive create ARCHIVE PATH...`: an archive of files and of
// folders with everything below them. Each PATH contributes its own name:
// folder `dir` gives `dir/a.txt`, file `x/y.txt` gives `y.txt`. Symbolic
// links are skipped with a warning. The archive is written under a
// temporary name and renamed into place only once complete, so Ctrl-C
// leaves no half-written archive behind.
class ArchiveCreateCommand final : public ArchiveSubcommand {
public:
    explicit ArchiveCreateCommand(CLI::App& archive);

protected:
    void Execute() override;

private:
    void AddOptions();
    std::vector<ArchiveSource> CollectSources() const;
    void WriteArchive(const std::vector<ArchiveSource>& sources, Yr::OBinaryChannel& output,
                      JobProgress& progress) const;

    std::string m_archive;
    std::vector<std::string> m_paths;
    std::string m_method = "deflated";
    int m_level = -1;
    Yr::UInt32 m_reserve = 0;
    std::vector<std::string> m_headers;
};

}  // namespace Morvelan::Tool
