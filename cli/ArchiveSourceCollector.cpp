#include "cli/ArchiveSourceCollector.h"

#include <algorithm>

#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystem.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

std::string PathOf(const ::IO::Location& location) {
    return Common::IO::LocationToPath(location).ToUtf8();
}

std::string NameOf(const ::IO::Location& location) {
    return Common::IO::GetName(location).ToUtf8();
}

::IO::FileSystem::EntryInfo InfoOf(const ::IO::Location& location) {
    ::IO::FileSystem::EntryInfo info;
    Common::IO::CheckFileSystemError(
        [&] { return Yr::UniString::Printf("Failed to look at '%s'.", PathOf(location)); },
        ::IO::FileSystem::Get().GetEntryInfo(PathOf(location), info), "cli/ArchiveSourceCollector",
        __LINE__);
    return info;
}

// The folder's direct entries, sorted so that archives come out the same
// whatever order the file system lists them in.
std::vector<::IO::Location> SortedEntries(const ::IO::Location& folder) {
    std::vector<::IO::Location> entries;
    Common::IO::EnumerateEntries(folder, entries);
    // Each name taken once, not once per comparison.
    std::vector<std::pair<std::string, std::size_t>> names;
    for (std::size_t i = 0; i < entries.size(); ++i) names.emplace_back(NameOf(entries[i]), i);
    std::sort(names.begin(), names.end());
    std::vector<::IO::Location> sorted;
    sorted.reserve(entries.size());
    for (const auto& [name, index] : names) sorted.push_back(std::move(entries[index]));
    return sorted;
}

}  // namespace

ArchiveSourceCollector::ArchiveSourceCollector(const ::IO::Location& archive, Warning warn)
    : m_archive(archive), m_warn(std::move(warn)) {}

void ArchiveSourceCollector::Add(const std::string& argument) {
    const ::IO::Location location = LocationOfArgument(argument);
    Visit(location, NameOf(location), argument);
}

void ArchiveSourceCollector::Visit(const ::IO::Location& location, const std::string& name,
                                   const std::string& shown) {
    const ::IO::FileSystem::EntryInfo info = InfoOf(location);
    if (info.isSymbolicLink) {
        m_warn("skipping symbolic link '" + shown + "'");
    } else if (info.isFolder) {
        VisitFolder(location, name, shown);
    } else if (!info.exists || info.isFile) {
        // A missing file is left to the reading, which reports it as such.
        if (location == m_archive)
            m_warn("skipping '" + shown + "': it is the archive itself");
        else
            m_sources.push_back({location, name, info.size, info.modificationTime});
    } else {
        m_warn("skipping '" + shown + "': not a file or folder");
    }
}

void ArchiveSourceCollector::VisitFolder(const ::IO::Location& folder, const std::string& name,
                                         const std::string& shown) {
    for (const ::IO::Location& entry : SortedEntries(folder)) {
        const std::string entryName = NameOf(entry);
        Visit(entry, name.empty() ? entryName : name + "/" + entryName,
              shown.ends_with('/') ? shown + entryName : shown + "/" + entryName);
    }
}

}  // namespace Morvelan::Tool
