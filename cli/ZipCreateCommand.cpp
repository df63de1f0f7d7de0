#include "cli/ZipCreateCommand.h"

#include <sys/stat.h>

#include <map>

#include "Common/IO/BinaryChannelUtilities.h"
#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/ZipOBinaryChannel.h"
#include "Common/ProgressMonitorIBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "cli/ArchiveSourceCollector.h"
#include "cli/CancelableIBinaryChannel.h"
#include "cli/CommandSupport.h"
#include "cli/JobProgress.h"
#include "cli/StandardOutputChannel.h"

namespace Morvelan::Tool {
namespace {

using Common::IO::ZipEntry;
using Common::IO::ZipOBinaryChannel;

constexpr Yr::UInt32 kReadBufferSize = 1 << 20;
// Headers and descriptors go out a few bytes at a time.
constexpr Yr::UInt32 kWriteBufferSize = 262144;
// What zip records for a plain file when it is not asked to keep modes.
constexpr Yr::UInt32 kFileMode = S_IFREG | 0644;

const std::map<std::string, ZipEntry::Method> kMethods = {
    {"stored", ZipEntry::Stored},
    {"deflated", ZipEntry::Deflated},
};

void WriteEntry(ZipOBinaryChannel& zip, const ArchiveSource& source, ZipEntry::Method method,
                JobProgress& progress) {
    Common::IO::FileIBinaryChannel file(source.location, Common::IO::FileShare::ReadWrite);
    Common::ProgressMonitorIBinaryChannel monitored(file, progress.BeginFile());
    CancelableIBinaryChannel cancelable(monitored, progress.GetCancelMonitor());
    const auto entry = Yr::MakeRef<ZipEntry>(Yr::UniString::FromUtf8(source.name));
    entry->SetMethod(method);
    entry->SetTime(source.modificationTime);
    entry->SetExternalAttributes(kFileMode << 16);
    zip.PutNextEntry(entry);
    Common::IO::BinaryChannelUtilities::Copy(cancelable, zip, source.size, kReadBufferSize);
    zip.CloseEntry();
    progress.EndFile();
}

Yr::UInt64 TotalSize(const std::vector<ArchiveSource>& sources) {
    Yr::UInt64 total = 0;
    for (const ArchiveSource& source : sources) total += source.size;
    return total;
}

}  // namespace

ZipCreateCommand::ZipCreateCommand(CLI::App& zip)
    : ArchiveSubcommand(zip, "create",
                        "Create a zip file of files and folders (folders with all below them)") {
    m_subcommand->add_option("ZIPFILE", m_zip, "The zip file to write; - writes standard output")
        ->required()
        ->type_name("FILE");
    m_subcommand
        ->add_option("PATH", m_paths, "Files and folders to put in; symbolic links are skipped")
        ->required()
        ->type_name("");
    m_subcommand->add_option("--method", m_method, "How entries are compressed (default deflated)")
        ->type_name("METHOD")
        ->check(CLI::IsMember(kMethods));
    m_subcommand->add_option("--level", m_level, "Deflate level: -1 (zlib's default) to 9")
        ->type_name("N")
        ->check(CLI::Range(-1, 9).description(""));
    m_subcommand->add_option("--comment", m_comment, "The zip file's comment")->type_name("TEXT");
    AddQuietFlag();
}

void ZipCreateCommand::Execute() {
    const ::IO::Location target = m_zip == "-" ? ::IO::Location() : LocationOfArgument(m_zip);
    ArchiveSourceCollector collector(target, [this](const std::string& text) { Warn(text); });
    for (const std::string& path : m_paths) collector.Add(path);
    const std::vector<ArchiveSource>& sources = collector.GetSources();
    JobProgress progress(IsQuiet());
    progress.Run(TotalSize(sources), [&] {
        if (m_zip != "-")
            return WriteReplacing(
                m_zip, [&](Yr::OBinaryChannel& output) { WriteZip(sources, output, progress); });
        StandardOutputChannel output;
        WriteZip(sources, output, progress);
    });
}

void ZipCreateCommand::WriteZip(const std::vector<ArchiveSource>& sources,
                                Yr::OBinaryChannel& output, JobProgress& progress) const {
    Yr::BufferedOBinaryChannel buffered(output, kWriteBufferSize);
    ZipOBinaryChannel zip(buffered);
    zip.SetLevel(m_level);
    if (!m_comment.empty()) zip.SetComment(Yr::UniString::FromUtf8(m_comment));
    const ZipEntry::Method method = kMethods.at(m_method);
    for (const ArchiveSource& source : sources) WriteEntry(zip, source, method, progress);
    // Finishes the zip file and closes the buffer and the output under it.
    zip.Close();
}

}  // namespace Morvelan::Tool
