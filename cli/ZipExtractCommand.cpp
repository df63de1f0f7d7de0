#include "cli/ZipExtractCommand.h"

#include <cstdio>

#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "cli/CommandSupport.h"
#include "cli/EntryExtraction.h"
#include "cli/JobProgress.h"
#include "cli/ZipReader.h"

namespace Morvelan::Tool {
namespace {

// A folder entry, "name/", becomes a folder; its name passes the same
// checks as a file's.
void ExtractFolder(Common::IO::ArchiveExtractor& extractor, const Yr::UniString& name) {
    const std::string path = name.ToUtf8();
    const auto target = extractor.Prepare(Yr::UniString::FromUtf8(path.substr(0, path.size() - 1)));
    if (!Common::IO::Exists(target.location)) Common::IO::CreateFolder(target.location);
}

}  // namespace

ZipExtractCommand::ZipExtractCommand(CLI::App& zip)
    : ArchiveSubcommand(zip, "extract", "Extract the entries of a zip file into a folder") {
    m_subcommand->add_option("ZIPFILE", m_zip, "The zip file to read; - reads standard input")
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

void ZipExtractCommand::Execute() {
    Common::IO::ArchiveExtractor extractor(m_folder.empty()
                                               ? Common::IO::GetCurrentWorkingFolderLocation()
                                               : LocationOfArgument(m_folder));
    JobProgress progress(IsQuiet());
    ZipReader reader(m_zip, &progress.GetJobMonitor());
    progress.Run(reader.GetSizeIfKnown(), [&] {
        reader.ForEach([&](const Common::IO::ZipEntry& entry) {
            progress.BeginFile();
            if (entry.IsDirectory())
                ExtractFolder(extractor, entry.GetName());
            else
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
