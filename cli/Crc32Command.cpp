#include "cli/Crc32Command.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "Common/ExceptionPrinting.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CountingIBinaryChannel.h"
#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/LocationUtils.h"
#include "Common/IO/NullOBinaryChannel.h"
#include "InputOutput/WellKnownLocations.h"
#include "Yr/Exceptions.h"
#include "Yr/YrException.h"

namespace Morvelan::Tool {
namespace {

using Common::IO::FileIBinaryChannel;
using Common::IO::FileShare;

constexpr Yr::UInt32 kCopyBufferSize = 1 << 20;
constexpr const char* kSourceUnit = "cli/Crc32Command";

// Relative paths count from the working folder, as the shell's do.
IO::Location LocationOfArgument(const std::string& argument) {
    const Yr::UniString path(argument.c_str());
    if (Common::IO::IsAbsolutePath(path)) return Common::IO::LocationFromPath(path);
    IO::Location workingFolder;
    if (IO::WellKnownLocations::GetWorkingFolder(workingFolder) != IO::kSuccess)
        throw Yr::IOException("Failed to find the working folder.", kSourceUnit, __LINE__,
                              Yr::kIOErrorCode);
    return Common::IO::LocationFromRelativePath(workingFolder, path);
}

// Streams the file through a counter and a checksum into nowhere.
void PrintChecksum(Yr::IBinaryChannel& file, const std::string& label) {
    Common::IO::CountingIBinaryChannel counted(file);
    Common::IO::CRC32IBinaryChannel checksummed(counted);
    Common::IO::NullOBinaryChannel nowhere;
    Common::IO::BinaryChannelUtilities::CopyAll(checksummed, nowhere, kCopyBufferSize);
    const Yr::UniString line =
        label.empty()
            ? Yr::UniString::Printf("%08x %llu\n", checksummed.GetCRC(), counted.GetCount())
            : Yr::UniString::Printf("%08x %llu %s\n", checksummed.GetCRC(), counted.GetCount(),
                                    label);
    std::fputs(line.ToPrintf(), stdout);
}

}  // namespace

Crc32Command::Crc32Command(CLI::App& parent) {
    m_subcommand = parent.add_subcommand(
        "crc32", "Print the CRC-32 (as in zip and zlib) and the size of each file");
    m_subcommand->add_option("FILE", m_files, "Files to read; none or - reads standard input");
}

int Crc32Command::Run() {
    if (m_files.empty()) m_files.push_back("-");
    int status = 0;
    for (const std::string& path : m_files) {
        try {
            if (path == "-") {
                // Reopened through the system so it reads like any file; not
                // locked, since whoever feeds it keeps writing.
                FileIBinaryChannel input(IO::Location::Parse("/dev/stdin"), FileShare::ReadWrite);
                PrintChecksum(input, m_files.size() == 1 ? "" : "-");
            } else {
                // Others may read the file meanwhile, but not change it under us.
                FileIBinaryChannel file(LocationOfArgument(path), FileShare::Read);
                PrintChecksum(file, path);
            }
        } catch (const Yr::YrException& failure) {
            std::fflush(stdout);
            std::fprintf(stderr, "morvelan crc32: %s\n", failure.GetMessage().ToPrintf());
            status = 1;
        }
    }
    return status;
}

}  // namespace Morvelan::Tool
