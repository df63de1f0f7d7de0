#include "cli/Crc32Command.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "Common/ExceptionPrinting.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CountingIBinaryChannel.h"
#include "Common/IO/NullOBinaryChannel.h"
#include "Yr/YrException.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

constexpr Yr::UInt32 kCopyBufferSize = 1 << 20;

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
            const std::unique_ptr<Yr::IBinaryChannel> input = OpenInput(path);
            PrintChecksum(*input, path == "-" && m_files.size() == 1 ? "" : path);
        } catch (const Yr::YrException& failure) {
            std::fflush(stdout);
            std::fprintf(stderr, "morvelan crc32: %s\n", failure.GetMessage().ToPrintf());
            status = 1;
        }
    }
    return status;
}

}  // namespace Morvelan::Tool
