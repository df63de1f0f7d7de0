#include "cli/ArchiveCatCommand.h"

#include "Common/IO/ArchiveException.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Yr/ErrorCodes.h"
#include "cli/ArchiveReader.h"
#include "cli/StandardOutputChannel.h"

namespace Morvelan::Tool {
namespace {

constexpr Yr::UInt32 kCopyBufferSize = 1 << 20;

}  // namespace

ArchiveCatCommand::ArchiveCatCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "cat", "Write one entry's data to standard output") {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive to read; - reads standard input")
        ->required()
        ->type_name("FILE");
    m_subcommand->add_option("ENTRY", m_entry, "The entry's name, as `list` shows it")
        ->required()
        ->type_name("NAME");
}

void ArchiveCatCommand::Execute() {
    ArchiveReader reader(m_archive);
    bool found = false;
    reader.ForEach([&](const Common::IO::ArchiveEntry& entry) {
        if (entry.GetName().ToUtf8() != m_entry) return true;
        StandardOutputChannel output;
        Common::IO::BinaryChannelUtilities::CopyAll(reader.GetData(), output, kCopyBufferSize);
        found = true;
        return false;
    });
    if (!found)
        throw Common::IO::ArchiveException(
            Yr::UniString::Printf("There is no entry '%s' in the archive.", m_entry),
            "cli/ArchiveCatCommand", __LINE__, Yr::kIOErrorCode);
}

}  // namespace Morvelan::Tool
