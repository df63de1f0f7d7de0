#include "InputOutput/WellKnownLocations.h"

#include <cstdlib>
#include <string>

#include "InputOutput/FileSystem.h"
#include "InputOutput/Folder.h"

namespace IO {
namespace {

Status LocationFromSystemPath(const std::string& path, Location& location) {
    Location parsed = Location::Parse(Yr::UniString::FromUtf8Replacing(path));
    if (parsed.GetStatus() != kSuccess) return parsed.GetStatus();
    location = parsed;
    return kSuccess;
}

}  // namespace

Status WellKnownLocations::GetProgramFile(Location& location) {
    std::string path;
    const Status status = FileSystem::Get().GetProgramPath(path);
    return status != kSuccess ? status : LocationFromSystemPath(path, location);
}

Status WellKnownLocations::GetProgramFolder(Location& location) {
    Location file;
    Status status = GetProgramFile(file);
    if (status == kSuccess) status = file.RemoveLastName();
    if (status == kSuccess) location = file;
    return status;
}

Status WellKnownLocations::GetWorkingFolder(Location& location) {
    std::string path;
    const Status status = FileSystem::Get().GetWorkingFolder(path);
    return status != kSuccess ? status : LocationFromSystemPath(path, location);
}

Status WellKnownLocations::GetTempFolder(Location& location) {
    // getenv is no system call: it reads the process's own memory.
    const char* variable = std::getenv("TMPDIR");
    const std::string path = variable != nullptr && variable[0] == '/' ? variable : "/tmp";
    Location candidate;
    Status status = LocationFromSystemPath(path, candidate);
    Folder folder;
    if (status == kSuccess) status = Folder::Open(candidate, folder);
    if (status == kSuccess) location = candidate;
    return status;
}

}  // namespace IO
