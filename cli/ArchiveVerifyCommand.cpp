#include "cli/ArchiveVerifyCommand.h"

#include <cstdio>

#include "cli/ArchiveReader.h"
#include "cli/JobProgress.h"

namespace Morvelan::Tool {

ArchiveVerifyCommand::ArchiveVerifyCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "verify",
                        "Check every entry of an archive against its sizes and CRC-32") {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive to read; - reads standard input")
        ->required()
        ->type_name("FILE");
    AddQuietFlag();
}

void ArchiveVerifyCommand::Execute() {
    JobProgress progress(IsQuiet());
    ArchiveReader reader(m_archive, &progress.GetJobMonitor());
    unsigned long long count = 0;
    progress.Run(reader.GetSizeIfKnown(), [&] {
        reader.ForEach([&](const Common::IO::ArchiveEntry&) {
            // Left here rather than by ForEach, so the entry's bytes count as its own.
            progress.BeginFile();
            reader.Leave();
            progress.EndFile();
            ++count;
            return true;
        });
    });
    std::printf("%llu %s verified\n", count, count == 1 ? "entry" : "entries");
}

}  // namespace Morvelan::Tool
