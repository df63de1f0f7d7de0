#include "cli/ArchiveExtractCommand.h"

#include <cstdio>

#include "Common/IO/ArchiveExtractor.h"
#include "Common/IO/LocationUtils.h"
#include "cli/ArchiveReader.h"
#include "cli/CommandSupport.h"
#include "cli/EntryExtraction.h"
#include "cli/JobProgress.h"

namespace Morvelan::Tool {

ArchiveExtractCommand::ArchiveExtractCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "extract", "Extract the entries of an archive into a folder") {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive to read; - reads standard input")
        ->required()
        ->type_name("FILE");
    m_subcommand
        ->add_option("-C,--directory", m_folder,
                     "The folder to extract into, created if missing (default: the "
                     "working folder)")
        ->type_name("FOLDER");
    m_subcommand->add_flag("-v,--verbose", m_verbose, "Print each entry's name once extracted");
    AddQuietFlag();
}

void ArchiveExtractCommand::Execute() {
    Common::IO::ArchiveExtractor extractor(m_folder.empty()
                                               ? Common::IO::GetCurrentWorkingFolderLocation()
                                               : LocationOfArgument(m_folder));
    JobProgress progress(IsQuiet());
    ArchiveReader reader(m_archive, &progress.GetJobMonitor());
    progress.Run(reader.GetSizeIfKnown(), [&] {
        reader.ForEach([&](const Common::IO::ArchiveEntry& entry) {
            progress.BeginFile();
            ExtractEntry(reader, extractor, entry.GetName());
            progress.EndFile();
            if (m_verbose) {
                progress.Clear();
                std::printf("%s\n", entry.GetName().ToPrintf());
                std::fflush(stdout);
            }
            return true;
        });
    });
}

}  // namespace Morvelan::Tool
