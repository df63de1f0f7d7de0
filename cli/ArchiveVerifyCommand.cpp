#include "cli/ArchiveVerifyCommand.h"

#include <cstdio>

#include "cli/ArchiveReader.h"

namespace Morvelan::Tool {

ArchiveVerifyCommand::ArchiveVerifyCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "verify",
                        "Check every entry of an archive against its sizes and CRC-32") {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive to read; - reads standard input")
        ->required()
        ->type_name("FILE");
}

void ArchiveVerifyCommand::Execute() {
    ArchiveReader reader(m_archive);
    unsigned long long count = 0;
    reader.ForEach([&](const Common::IO::ArchiveEntry&) {
        ++count;
        return true;
    });
    std::printf("%llu %s verified\n", count, count == 1 ? "entry" : "entries");
}

}  // namespace Morvelan::Tool
