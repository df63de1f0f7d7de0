#include "cli/ZipTestCommand.h"

#include <cstdio>

#include "cli/JobProgress.h"
#include "cli/ZipReader.h"

namespace Morvelan::Tool {

ZipTestCommand::ZipTestCommand(CLI::App& zip)
    : ArchiveSubcommand(zip, "test",
                        "Check every entry of a zip file against its size and CRC-32") {
    m_subcommand->add_option("ZIPFILE", m_zip, "The zip file to read; - reads standard input")
        ->required()
        ->type_name("FILE");
    AddQuietFlag();
}

void ZipTestCommand::Execute() {
    JobProgress progress(IsQuiet());
    ZipReader reader(m_zip, &progress.GetJobMonitor());
    unsigned long long count = 0;
    progress.Run(reader.GetSizeIfKnown(), [&] {
        reader.ForEach([&](const Common::IO::ZipEntry&) {
            // Left here rather than by ForEach, so the entry's bytes count as its own.
            progress.BeginFile();
            reader.Leave();
            progress.EndFile();
            ++count;
            return true;
        });
    });
    std::printf("%llu %s ok\n", count, count == 1 ? "entry" : "entries");
}

}  // namespace Morvelan::Tool
