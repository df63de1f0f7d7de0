#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "InputOutput/Location.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/UniString.h"

namespace Yr {
class YrException;
}

// What the subcommands share: turning arguments into locations and input
// channels, and failures into one line for standard error.
namespace Morvelan::Tool {

// Relative paths count from the working folder, as the shell's do; "." and
// "name/.." are folded away.
::IO::Location LocationOfArgument(const std::string& argument);

// The file named, or standard input for "-". Others may read the file
// meanwhile, but not change it under us.
std::unique_ptr<Yr::IBinaryChannel> OpenInput(const std::string& argument);

// For options taking NAME=VALUE: empty when `argument` is one (the name not
// empty), else what is wrong, as CLI11 validators report it.
std::string CheckNameValue(const std::string& argument);
// The name and value of an argument CheckNameValue accepted.
std::pair<Yr::UniString, Yr::UniString> SplitNameValue(const std::string& argument);

// Runs `write` on a new file beside the one `argument` names, then renames
// it over that one: the target is either the old file or the whole new one,
// never half of one. When `write` throws, the new file is deleted.
void WriteReplacing(const std::string& argument,
                    const std::function<void(Yr::OBinaryChannel& output)>& write);

// Deletes a file left by a failed attempt; a failure to delete is dropped,
// as the failure that led here is the one worth reporting.
void DeleteQuietly(const ::IO::Location& location);

// The message of the exception and of each of its causes, joined by spaces:
// what a user needs, without exception names or source lines.
std::string DescribeFailure(const Yr::YrException& failure);

}  // namespace Morvelan::Tool
