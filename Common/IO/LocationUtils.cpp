#include "Common/IO/LocationUtils.h"

#include <cstddef>

#include "Common/IO/IOUtilities.h"
#include "InputOutput/Folder.h"
#include "InputOutput/Name.h"
#include "InputOutput/WellKnownLocations.h"
#include "InputOutput/Status.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using ::IO::Location;
using ::IO::RelativeLocation;
using ::IO::Status;
using Yr::UniString;

constexpr const char* kSourceUnit = "Common/IO/LocationUtils";
constexpr char32_t kLegalReplacement = U'_';

[[noreturn]] void ThrowIllegalArgument(const UniString& message, const char* sourceFile,
                                       Yr::UInt32 line) {
    throw Yr::IllegalArgumentException(message, sourceFile, line, Yr::kIllegalArgumentErrorCode);
}

[[noreturn]] void ThrowIO(const UniString& message, Yr::UInt32 line) {
    throw Yr::IOException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

// Messages print statuses signed, as the callers' logs always have.
int ErrorCodeOf(Status status) {
    return static_cast<int>(status);
}

void CheckPathNotEmpty(const UniString& path, Yr::UInt32 line) {
    if (path.IsEmpty()) ThrowIllegalArgument("Invalid path: path is empty.", kSourceUnit, line);
}

void CheckName(const UniString& name, Yr::UInt32 line) {
    if (name.IsEmpty()) ThrowIllegalArgument("Invalid name: name is empty.", kSourceUnit, line);
}

void CheckNames(const std::vector<UniString>& names, Yr::UInt32 line) {
    for (const UniString& name : names)
        if (name.IsEmpty())
            ThrowIllegalArgument("Invalid name list: list contains empty name.", kSourceUnit, line);
    if (names.empty()) ThrowIllegalArgument("Invalid name list: list is empty.", kSourceUnit, line);
}

// The names are checked already; every one is tried before the result is returned.
Location AppendNames(const Location& location, const std::vector<UniString>& names) {
    Location result = location;
    for (const UniString& name : names) {
        const Status status = result.Append(::IO::Name(name));
        if (status != ::IO::kSuccess)
            ThrowIO(UniString::Printf("Failed to concatenate name: '%T' to location: '%T'. "
                                      "(Error code: %d)",
                                      name, location.GetDisplayText(), ErrorCodeOf(status)),
                    __LINE__);
    }
    return result;
}

UniString ReadName(const Location& location, std::size_t index) {
    ::IO::Name name;
    if (location.GetNameAt(index, name) != ::IO::kSuccess)
        ThrowIO(UniString::Printf("Failed to get local name: index: %u.",
                                  static_cast<Yr::UInt32>(index)),
                __LINE__);
    return name.GetText();
}

void RemoveName(Location& location, std::size_t index) {
    if (location.RemoveNameAt(index) != ::IO::kSuccess)
        ThrowIO(UniString::Printf("Failed to delete local name: index: %u.",
                                  static_cast<Yr::UInt32>(index)),
                __LINE__);
}

Location NormalizeNames(const Location& location) {
    Location result = location;
    UniString previous;
    for (std::size_t i = 0; i < result.GetNameCount();) {
        const UniString name = ReadName(result, i);
        if (name == ".." && i != 0 && previous != "..") {
            RemoveName(result, i);
            RemoveName(result, i - 1);
            --i;
            previous = i != 0 && result.GetNameCount() > 0 ? ReadName(result, i - 1) : UniString();
        } else if (name == ".") {
            RemoveName(result, i);
        } else {
            previous = name;
            ++i;
        }
    }
    return result;
}

using SpecialLocationGetter = Status (*)(Location&);
using StatusThrower = void (*)(const UniString&, Status, const char*, Yr::UInt32);

// The program and working folder come from the system as files do; the
// temporary folder is looked up as a folder, and reported as one.
Location GetSpecialLocation(SpecialLocationGetter get, StatusThrower throwError,
                            const char* failure, Yr::UInt32 line) {
    Location location;
    const Status status = get(location);
    if (status != ::IO::kSuccess) throwError(failure, status, kSourceUnit, line);
    return location;
}

// The cuts are coarse for long bases and fine for short ones, so a name
// loses little more than it must.
std::size_t ShortenedLength(std::size_t length) {
    if (length > 80) return length - 10;
    if (length > 40) return length - 5;
    if (length > 20) return length - 3;
    if (length > 1) return length - 1;
    ThrowIO("File name can't be truncated any further.", __LINE__);
}

// The name library cuts long names at the end, which takes the extension
// first; this takes the characters from the base instead.
::IO::Name MakeLegalKeepingExtension(const ::IO::Name& name) {
    const ::IO::Name legal = name.MakeLegal();
    if (legal.GetText().GetLength() >= name.GetText().GetLength() || !name.HasExtension())
        return legal;
    const UniString extension = name.GetExtension();
    const UniString legalExtension = legal.GetExtension();
    if (legalExtension == extension || legalExtension.GetLength() >= extension.GetLength())
        return legal;
    const std::size_t excess =
        extension.GetLength() - legalExtension.GetLength() + (legal.HasExtension() ? 0 : 1);
    UniString base = legal.GetBase();
    base.Truncate(base.GetLength() > excess ? base.GetLength() - excess : 0);
    return ::IO::Name(base + "." + extension).MakeLegal();
}

Location ShortenUntilValid(const Location& folder, const ::IO::Name& given) {
    // Kept legal, so that a shortened name can become valid at all.
    const UniString extension =
        ::IO::Name::ReplaceIllegalCharacters(given.GetExtension(), kLegalReplacement);
    ::IO::Name current = given.IsLegal() ? given : MakeLegalKeepingExtension(given);
    for (;;) {
        Location candidate = Concatenate(folder, current.GetText());
        if (IsValid(candidate)) return candidate;
        UniString base = current.GetBase();
        base.Truncate(ShortenedLength(base.GetLength()));
        current = ::IO::Name(given.HasExtension() ? base + "." + extension : base);
    }
}

}  // namespace

void CheckLocation(const Location& location, const char* sourceFile, Yr::UInt32 line) {
    if (!location.IsLegal())
        ThrowIllegalArgument(UniString::Printf("Invalid location '%T': location is not legal.",
                                               location.GetDisplayText()),
                             sourceFile, line);
    if (location.IsEmpty())
        ThrowIllegalArgument("Invalid location: location is empty.", sourceFile, line);
}

void CheckLocations(const std::vector<Location>& locations, const char* sourceFile,
                    Yr::UInt32 line) {
    if (locations.empty())
        ThrowIllegalArgument("Invalid location list: list is empty.", sourceFile, line);
    for (const Location& location : locations) {
        if (!location.IsLegal())
            ThrowIllegalArgument(
                UniString::Printf("Invalid location list: list contains illegal location: '%T'.",
                                  location.GetDisplayText()),
                sourceFile, line);
        if (location.IsEmpty())
            ThrowIllegalArgument("Invalid location list: list contains empty location.", sourceFile,
                                 line);
    }
}

void CheckRelativeLocation(const RelativeLocation& relativeLocation, const char* sourceFile,
                           Yr::UInt32 line) {
    if (!relativeLocation.IsLegal())
        ThrowIllegalArgument(
            UniString::Printf("Invalid relative location '%T': relative location is not legal.",
                              relativeLocation.GetDisplayText()),
            sourceFile, line);
    if (relativeLocation.IsEmpty())
        ThrowIllegalArgument("Invalid relative location: relative location is empty.", sourceFile,
                             line);
}

bool IsValid(const Location& location) {
    return location.GetStatus() == ::IO::kSuccess && !location.IsEmpty() && location.IsLegal();
}

bool IsValid(const RelativeLocation& relativeLocation) {
    return relativeLocation.GetStatus() == ::IO::kSuccess && !relativeLocation.IsEmpty() &&
           relativeLocation.IsLegal();
}

Location LocationFromPath(const UniString& path) {
    CheckPathNotEmpty(path, __LINE__);
    if (!IsAbsolutePath(path))
        ThrowIO(UniString::Printf("Failed to create location from path: '%T': the specified path "
                                  "is not absolute.",
                                  path),
                __LINE__);
    Location location = Location::Parse(path);
    if (location.GetStatus() != ::IO::kSuccess)
        ThrowIO(UniString::Printf("Failed to create location from path: '%T'. (Error code: %d)",
                                  path, ErrorCodeOf(location.GetStatus())),
                __LINE__);
    return location;
}

Location LocationFromRelativePath(const Location& base, const UniString& relativePath) {
    CheckLocation(base, kSourceUnit, __LINE__);
    CheckPathNotEmpty(relativePath, __LINE__);
    if (IsAbsolutePath(relativePath))
        ThrowIO(UniString::Printf("Failed to create location from relative path: '%T': the "
                                  "specified path is not relative.",
                                  relativePath),
                __LINE__);
    Location result = base;
    Status status = result.Append(RelativeLocation::Parse(relativePath));
    if (status == ::IO::kSuccess) status = result.GetStatus();
    if (status != ::IO::kSuccess)
        ThrowIO(UniString::Printf(
                    "Failed to create location from relative path: '%T'. (Error code: %d)",
                    relativePath, ErrorCodeOf(status)),
                __LINE__);
    return result;
}

// The path follows the scheme as it is: a native path already uses '/'.
Location LocationFromURL(const UniString& url) {
    static const UniString kScheme = "file://";
    if (url.IsEmpty() || url.FindFirst(kScheme) != 0)
        ThrowIllegalArgument("Invalid file url.", kSourceUnit, __LINE__);
    return LocationFromPath(url.GetSubstring(kScheme.GetLength()));
}

UniString LocationToURL(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    return "file://" + LocationToPath(location);
}

UniString LocationToPath(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    UniString path;
    if (location.GetPath(path) == ::IO::kSuccess) return path;
    if (location.IsLegal()) ThrowIO("Failed to get location path.", __LINE__);
    return location.GetDisplayText();
}

UniString LocationToPath(const RelativeLocation& relativeLocation) {
    CheckRelativeLocation(relativeLocation, kSourceUnit, __LINE__);
    UniString path;
    for (std::size_t i = 0; i < relativeLocation.GetNameCount(); ++i) {
        ::IO::Name name;
        if (relativeLocation.GetNameAt(i, name) != ::IO::kSuccess) continue;
        if (!path.IsEmpty()) path.Append("/");
        path.Append(name.GetText());
    }
    return path;
}

bool IsAbsolutePath(const UniString& path) {
    CheckPathNotEmpty(path, __LINE__);
    const bool absolute = path.ToUtf8().front() == '/';
    bool parsed = false;
    if (absolute) {
        parsed = Location::Parse(path).GetStatus() == ::IO::kSuccess;
    } else {
        const RelativeLocation names = RelativeLocation::Parse(path);
        parsed = names.GetStatus() == ::IO::kSuccess && !names.IsEmpty();
    }
    if (!parsed) ThrowIO(UniString::Printf("Invalid path: '%T'.", path), __LINE__);
    return absolute;
}

bool IsRelativePath(const UniString& path) {
    return !IsAbsolutePath(path);
}

Location Concatenate(const Location& location, const UniString& name) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckName(name, __LINE__);
    return AppendNames(location, {name});
}

Location Concatenate(const Location& location, const UniString& name1, const UniString& name2) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckName(name1, __LINE__);
    CheckName(name2, __LINE__);
    return AppendNames(location, {name1, name2});
}

Location Concatenate(const Location& location, const UniString& name1, const UniString& name2,
                     const UniString& name3) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckName(name1, __LINE__);
    CheckName(name2, __LINE__);
    CheckName(name3, __LINE__);
    return AppendNames(location, {name1, name2, name3});
}

Location Concatenate(const Location& location, const std::vector<UniString>& names) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckNames(names, __LINE__);
    return AppendNames(location, names);
}

Location Concatenate(const Location& location, const RelativeLocation& relativeLocation) {
    CheckRelativeLocation(relativeLocation, kSourceUnit, __LINE__);
    CheckLocation(location, kSourceUnit, __LINE__);
    Location result = location;
    const Status status = result.Append(relativeLocation);
    if (status != ::IO::kSuccess)
        ThrowIO(UniString::Printf("Failed to concatenate relative location: '%T' to location: "
                                  "'%T'. (Error code: %d)",
                                  relativeLocation.GetDisplayText(), location.GetDisplayText(),
                                  ErrorCodeOf(status)),
                __LINE__);
    return result;
}

UniString GetName(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    ::IO::Name name;
    const Status status = location.GetLastName(name);
    if (status != ::IO::kSuccess)
        ThrowIO(UniString::Printf("Failed to get name from location: '%T'. (Error code: %d)",
                                  location.GetDisplayText(), ErrorCodeOf(status)),
                __LINE__);
    return name.GetText();
}

Location GetParentLocation(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    Location parent = location;
    const Status status = parent.RemoveLastName();
    if (status != ::IO::kSuccess)
        ThrowIO(
            UniString::Printf("Failed to get parent location of location: '%T'. (Error code: %d)",
                              location.GetDisplayText(), ErrorCodeOf(status)),
            __LINE__);
    return parent;
}

bool IsAncestorOf(const Location& ancestor, const Location& location) {
    CheckLocation(ancestor, kSourceUnit, __LINE__);
    CheckLocation(location, kSourceUnit, __LINE__);
    return ancestor.IsAncestorOf(location);
}

Location Resolve(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    Location resolved;
    const Status status = location.Resolve(resolved);
    // The quote after the path is missing on purpose: callers match this text.
    if (status != ::IO::kSuccess)
        ThrowIO(UniString::Printf("Failed to resolve location: '%T. (Error code: %d)",
                                  location.GetDisplayText(), ErrorCodeOf(status)),
                __LINE__);
    return resolved;
}

Location Normalize(const Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    try {
        return NormalizeNames(location);
    } catch (const Yr::IOException& e) {
        throw Yr::IOException(
            UniString::Printf("Failed to normalize location: '%T'.", location.GetDisplayText()),
            kSourceUnit, __LINE__, e, Yr::kIOErrorCode);
    }
}

UniString NormalizeName(const UniString& name, char32_t replacement) {
    CheckName(name, __LINE__);
    if (!IsLegalNameChar(replacement))
        ThrowIllegalArgument(
            "Invalid replacement character: replacement character is not a legal name character.",
            kSourceUnit, __LINE__);
    return ::IO::Name::ReplaceIllegalCharacters(name, replacement);
}

bool IsLegalNameChar(char32_t character) {
    return ::IO::Name::IsLegalCharacter(character);
}

// Both application messages name the folder: callers already match that text.
Location GetApplicationFileLocation() {
    return GetSpecialLocation(&::IO::WellKnownLocations::GetProgramFile, &ThrowFileError,
                              "Failed to get application folder location.", __LINE__);
}

Location GetApplicationFolderLocation() {
    return GetSpecialLocation(&::IO::WellKnownLocations::GetProgramFolder, &ThrowFileError,
                              "Failed to get application folder location.", __LINE__);
}

Location GetCurrentWorkingFolderLocation() {
    return GetSpecialLocation(&::IO::WellKnownLocations::GetWorkingFolder, &ThrowFileError,
                              "Failed to get current working folder location.", __LINE__);
}

Location GetTempFolderLocation() {
    return GetSpecialLocation(&::IO::WellKnownLocations::GetTempFolder, &ThrowFolderError,
                              "Failed to get temp folder location.", __LINE__);
}

Location CreateTemporaryFileLocation(const Location& folder, const UniString& prefix,
                                     const UniString& suffix) {
    CheckLocation(folder, kSourceUnit, __LINE__);
    ::IO::Folder opened;
    ::IO::Name name;
    Status status = ::IO::Folder::Open(folder, opened);
    if (status == ::IO::kSuccess) status = opened.GenerateUnusedName(prefix, suffix, name);
    if (status != ::IO::kSuccess)
        ThrowFolderError(
            UniString::Printf("Failed to create temporary file location in folder: '%T'.",
                              folder.GetDisplayText()),
            status, kSourceUnit, __LINE__);
    return Concatenate(folder, name.GetText());
}

Location CreateTemporaryFileLocation(const UniString& prefix, const UniString& suffix) {
    Location folder;
    const Status status = ::IO::WellKnownLocations::GetTempFolder(folder);
    if (status != ::IO::kSuccess)
        ThrowFolderError("Failed to create temporary file location in temporary folder.", status,
                         kSourceUnit, __LINE__);
    return CreateTemporaryFileLocation(folder, prefix, suffix);
}

Location CreateLegalFileLocation(const Location& folder, const UniString& name) {
    try {
        CheckLocation(folder, kSourceUnit, __LINE__);
        return ShortenUntilValid(folder, ::IO::Name(name));
    } catch (const Yr::IOException& e) {
        throw Yr::IOException(UniString::Printf("Failed to create legal file location: folder "
                                                "location: '%T', file name: '%T'.",
                                                folder.GetDisplayText(), name),
                              kSourceUnit, __LINE__, e, Yr::kIOErrorCode);
    }
}

}  // namespace Morvelan::Common::IO
