#include "cli/CommandSupport.h"

#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "Yr/YrException.h"

namespace Morvelan::Tool {

using Common::IO::FileIBinaryChannel;
using Common::IO::FileShare;

::IO::Location LocationOfArgument(const std::string& argument) {
    const Yr::UniString path(argument.c_str(), argument.size());
    if (Common::IO::IsAbsolutePath(path))
        return Common::IO::Normalize(Common::IO::LocationFromPath(path));
    return Common::IO::Normalize(
        Common::IO::LocationFromRelativePath(Common::IO::GetCurrentWorkingFolderLocation(), path));
}

std::unique_ptr<Yr::IBinaryChannel> OpenInput(const std::string& argument) {
    // Standard input is reopened through the system so it reads like any
    // file; not locked, since whoever feeds it keeps writing.
    if (argument == "-")
        return std::make_unique<FileIBinaryChannel>(::IO::Location::Parse("/dev/stdin"),
                                                    FileShare::ReadWrite);
    return std::make_unique<FileIBinaryChannel>(LocationOfArgument(argument), FileShare::Read);
}

std::string CheckNameValue(const std::string& argument) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos || equals == 0) return "expected NAME=VALUE, got " + argument;
    return {};
}

std::pair<Yr::UniString, Yr::UniString> SplitNameValue(const std::string& argument) {
    const std::size_t equals = argument.find('=');
    return {Yr::UniString(argument.c_str(), equals),
            Yr::UniString(argument.c_str() + equals + 1, argument.size() - equals - 1)};
}

void WriteReplacing(const std::string& argument,
                    const std::function<void(Yr::OBinaryChannel& output)>& write) {
    const ::IO::Location target = LocationOfArgument(argument);
    const Yr::UniString name = Common::IO::GetName(target);
    const ::IO::Location temporary = Common::IO::CreateTemporaryFileLocation(
        Common::IO::GetParentLocation(target), "." + name + ".", ".tmp");
    try {
        Common::IO::FileOBinaryChannel file(temporary, false, Common::IO::FileShare::None);
        write(file);
        Common::IO::Rename(temporary, name);
    } catch (...) {
        DeleteQuietly(temporary);
        throw;
    }
}

void DeleteQuietly(const ::IO::Location& location) {
    try {
        Common::IO::Delete(location, 0, 0);
    } catch (const Yr::YrException&) {
    }
}

std::string DescribeFailure(const Yr::YrException& failure) {
    std::string text = failure.GetMessage().ToUtf8();
    for (const Yr::YrException* cause = failure.GetCause(); cause != nullptr;
         cause = cause->GetCause())
        text += " " + cause->GetMessage().ToUtf8();
    return text;
}

}  // namespace Morvelan::Tool
