#pragma once

#include <vector>

#include "InputOutput/Location.h"
#include "InputOutput/RelativeLocation.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

// Checks, conversions and building of file-system locations for every
// file-handling part of the library. Paths are native ("/a/b"), URLs are
// "file://" followed by the path, unencoded. Argument faults throw
// Yr::IllegalArgumentException, failures of the location types
// Yr::IOException, and failures of the system the file-system exceptions.
namespace Morvelan::Common::IO {

// The checks report the caller's source unit and line, not their own.
void CheckLocation(const ::IO::Location& location, const char* sourceFile, Yr::UInt32 line);
void CheckLocations(const std::vector<::IO::Location>& locations, const char* sourceFile,
                    Yr::UInt32 line);
void CheckRelativeLocation(const ::IO::RelativeLocation& relativeLocation, const char* sourceFile,
                           Yr::UInt32 line);
bool IsValid(const ::IO::Location& location);
bool IsValid(const ::IO::RelativeLocation& relativeLocation);

::IO::Location LocationFromPath(const Yr::UniString& path);
::IO::Location LocationFromRelativePath(const ::IO::Location& base,
                                        const Yr::UniString& relativePath);
::IO::Location LocationFromURL(const Yr::UniString& url);
Yr::UniString LocationToURL(const ::IO::Location& location);
Yr::UniString LocationToPath(const ::IO::Location& location);
Yr::UniString LocationToPath(const ::IO::RelativeLocation& relativeLocation);
bool IsAbsolutePath(const Yr::UniString& path);
bool IsRelativePath(const Yr::UniString& path);

::IO::Location Concatenate(const ::IO::Location& location, const Yr::UniString& name);
::IO::Location Concatenate(const ::IO::Location& location, const Yr::UniString& name1,
                           const Yr::UniString& name2);
::IO::Location Concatenate(const ::IO::Location& location, const Yr::UniString& name1,
                           const Yr::UniString& name2, const Yr::UniString& name3);
::IO::Location Concatenate(const ::IO::Location& location, const std::vector<Yr::UniString>& names);
::IO::Location Concatenate(const ::IO::Location& location,
                           const ::IO::RelativeLocation& relativeLocation);
Yr::UniString GetName(const ::IO::Location& location);
::IO::Location GetParentLocation(const ::IO::Location& location);
bool IsAncestorOf(const ::IO::Location& ancestor, const ::IO::Location& location);
::IO::Location Resolve(const ::IO::Location& location);
// Drops "." and folds "name/.."; a leading ".." is kept, never resolved.
::IO::Location Normalize(const ::IO::Location& location);
Yr::UniString NormalizeName(const Yr::UniString& name, char32_t replacement);
bool IsLegalNameChar(char32_t character);

::IO::Location GetApplicationFileLocation();
::IO::Location GetApplicationFolderLocation();
::IO::Location GetCurrentWorkingFolderLocation();
::IO::Location GetTempFolderLocation();

// A location in `folder` that no entry has yet; nothing is created.
::IO::Location CreateTemporaryFileLocation(const ::IO::Location& folder,
                                           const Yr::UniString& prefix,
                                           const Yr::UniString& suffix);
::IO::Location CreateTemporaryFileLocation(const Yr::UniString& prefix,
                                           const Yr::UniString& suffix);
// `name` in `folder`, made legal and shortened step by step until the whole
// location is valid; the extension is kept.
::IO::Location CreateLegalFileLocation(const ::IO::Location& folder, const Yr::UniString& name);

}  // namespace Morvelan::Common::IO
