#include "cli/ArchiveCreateCommand.h"

#include <cstdlib>
#include <map>
#include <memory>

#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Common/IO/FileIBinaryChannel.h"
#include "Common/ProgressMonitorIBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/YrException.h"
#include "cli/ArchiveSourceCollector.h"
#include "cli/CancelableIBinaryChannel.h"
#include "cli/CommandSupport.h"
#include "cli/JobProgress.h"
#include "cli/StandardOutputChannel.h"

namespace Morvelan::Tool {
namespace {

using Common::IO::ArchiveEntry;
using Common::IO::ArchiveOBinaryChannel;

// Large pieces keep the system calls per file few, as tar's do.
constexpr Yr::UInt32 kReadBufferSize = 1 << 20;
// The archive channel writes records and trailers a few bytes at a time.
constexpr Yr::UInt32 kWriteBufferSize = 262144;

const std::map<std::string, ArchiveEntry::Method> kMethods = {
    {"stored", ArchiveEntry::Stored},
    {"deflated", ArchiveEntry::Deflated},
    {"quicklz", ArchiveEntry::QuickLZ},
};

// Text that is no number at all is left to the conversion to refuse.
std::string CheckReserve(const std::string& argument) {
    const unsigned long long bytes = std::strtoull(argument.c_str(), nullptr, 10);
    if (bytes != 0 && bytes < ArchiveOBinaryChannel::kMinimumReservedHeaderSize)
        return "the reserved header size is 0 or at least 256 bytes";
    return {};
}

void WriteEntry(ArchiveOBinaryChannel& archive, const ArchiveSource& source,
                ArchiveEntry::Method method, JobProgress& progress) {
    // No lock, as tar takes none: a file changing meanwhile is the caller's affair.
    Common::IO::FileIBinaryChannel file(source.location, Common::IO::FileShare::ReadWrite);
    Common::ProgressMonitorIBinaryChannel monitored(file, progress.BeginFile());
    CancelableIBinaryChannel cancelable(monitored, progress.GetCancelMonitor());
    archive.PutNextEntry(Yr::UniString(source.name.c_str(), source.name.size()), method);
    Common::IO::BinaryChannelUtilities::Copy(cancelable, archive, source.size, kReadBufferSize);
    archive.CloseEntry();
    progress.EndFile();
}

Yr::UInt64 TotalSize(const std::vector<ArchiveSource>& sources) {
    Yr::UInt64 total = 0;
    for (const ArchiveSource& source : sources) total += source.size;
    return total;
}

}  // namespace

ArchiveCreateCommand::ArchiveCreateCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "create",
                        "Create an archive of files and folders (folders with all below them)") {
    AddOptions();
}

void ArchiveCreateCommand::AddOptions() {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive to write; - writes standard output")
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
    m_subcommand
        ->add_option("--reserve", m_reserve,
                     "Bytes reserved for the archive header, so that `header --set` can rewrite "
                     "it in place: 0 (none, the default) or at least 256")
        ->type_name("BYTES")
        ->check(CLI::Validator(CheckReserve, ""));
    m_subcommand->add_option("--header", m_headers, "An archive header (repeatable)")
        ->type_name("NAME=VALUE")
        ->check(CLI::Validator(CheckNameValue, ""));
    AddQuietFlag();
}

void ArchiveCreateCommand::Execute() {
    const std::vector<ArchiveSource> sources = CollectSources();
    JobProgress progress(IsQuiet());
    progress.Run(TotalSize(sources), [&] {
        if (m_archive != "-")
            return WriteReplacing(m_archive, [&](Yr::OBinaryChannel& output) {
                WriteArchive(sources, output, progress);
            });
        StandardOutputChannel output;
        WriteArchive(sources, output, progress);
    });
}

std::vector<ArchiveSource> ArchiveCreateCommand::CollectSources() const {
    const ::IO::Location target =
        m_archive == "-" ? ::IO::Location() : LocationOfArgument(m_archive);
    ArchiveSourceCollector collector(target, [this](const std::string& text) { Warn(text); });
    for (const std::string& path : m_paths) collector.Add(path);
    return collector.GetSources();
}

void ArchiveCreateCommand::WriteArchive(const std::vector<ArchiveSource>& sources,
                                        Yr::OBinaryChannel& output, JobProgress& progress) const {
    Yr::BufferedOBinaryChannel buffered(output, kWriteBufferSize);
    ArchiveOBinaryChannel archive(buffered, m_reserve);
    for (const std::string& header : m_headers) {
        const auto [name, value] = SplitNameValue(header);
        archive.PutHeader(name, value);
    }
    archive.SetCompressionLevel(m_level);
    const ArchiveEntry::Method method = kMethods.at(m_method);
    for (const ArchiveSource& source : sources) WriteEntry(archive, source, method, progress);
    // Finishes the archive and closes the buffer and the output under it.
    archive.Close();
}

}  // namespace Morvelan::Tool
