#include "InputOutput/Folder.h"

#include <atomic>
#include <cerrno>

#include "InputOutput/FileSystem.h"

namespace IO {
namespace {

// Enough tries to step over the leftovers of earlier runs; more would only
// hide a folder that fills up.
constexpr Yr::UInt32 kMaxAttempts = 100000;

// Shared by all folders so that names handed out in this process differ even
// before the caller has created the first one.
std::atomic<Yr::UInt32> g_nextNumber{1};

Status EntryExists(const Location& location, bool& exists) {
    Yr::UniString path;
    Status status = location.GetPath(path);
    if (status != kSuccess) return status;
    FileSystem::EntryInfo info;
    status = FileSystem::Get().GetEntryInfo(path.ToUtf8(), info);
    exists = info.exists;
    return status;
}

}  // namespace

Status Folder::Open(const Location& location, Folder& folder) {
    Yr::UniString path;
    Status status = location.GetPath(path);
    if (status != kSuccess) return status;
    FileSystem::EntryInfo info;
    status = FileSystem::Get().GetEntryInfo(path.ToUtf8(), info);
    if (status != kSuccess) return status;
    if (!info.exists) return kFolderNotFound;
    if (!info.isFolder) return kNotFolder;
    folder = Folder(location);
    return kSuccess;
}

Status Folder::GenerateUnusedName(const Yr::UniString& prefix, const Yr::UniString& suffix,
                                  Name& name) const {
    for (Yr::UInt32 attempt = 0; attempt < kMaxAttempts; ++attempt) {
        const Yr::UInt32 number = g_nextNumber.fetch_add(1, std::memory_order_relaxed);
        Name candidate(Yr::UniString::Printf("%T%u%T", prefix, number, suffix));
        Location location = m_location;
        Status status = location.Append(candidate);
        if (status != kSuccess) return status;
        bool exists = true;
        status = EntryExists(location, exists);
        if (status != kSuccess) return status;
        if (!exists) {
            name = candidate;
            return kSuccess;
        }
    }
    return kSystemErrorBase | EEXIST;
}

}  // namespace IO
