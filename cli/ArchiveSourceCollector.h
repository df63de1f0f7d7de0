#pragma once

#include <functional>
#include <string>
#include <vector>

#include "InputOutput/Location.h"
#include "cli/ArchiveSource.h"

namespace Morvelan::Tool {

// Gathers the files an archive is made of, as tar names them: a file by its
// own name, a folder by its name followed by the paths below it, joined with
// '/', each folder's entries in byte order of their names. Symbolic links are
// never followed (so no folder loop can arise) but skipped with a warning, as
// are sockets, pipes and devices, and the archive itself.
class ArchiveSourceCollector final {
public:
    using Warning = std::function<void(const std::string& text)>;

    // `archive` is where the archive goes, to be left out; empty for none.
    ArchiveSourceCollector(const ::IO::Location& archive, Warning warn);

    void Add(const std::string& argument);
    const std::vector<ArchiveSource>& GetSources() const { return m_sources; }

private:
    // `name` is the entry name, `shown` the path as the user wrote it, for warnings.
    void Visit(const ::IO::Location& location, const std::string& name, const std::string& shown);
    void VisitFolder(const ::IO::Location& folder, const std::string& name,
                     const std::string& shown);

    ::IO::Location m_archive;
    Warning m_warn;
    std::vector<ArchiveSource> m_sources;
};

}  // namespace Morvelan::Tool
