#include "cli/ArchiveListCommand.h"

#include <cstdio>
#include <map>

#include "cli/ArchiveReader.h"

namespace Morvelan::Tool {
namespace {

using Common::IO::ArchiveEntry;

const char* MethodName(ArchiveEntry::Method method) {
    switch (method) {
        case ArchiveEntry::Stored:
            return "stored";
        case ArchiveEntry::Deflated:
            return "deflated";
        case ArchiveEntry::QuickLZ:
            return "quicklz";
        default:
            return "?";
    }
}

// The share of the size that compression saved, as zip lists it.
double SavedPercent(const ArchiveEntry& entry) {
    if (entry.GetSize() == 0) return 0;
    return 100.0 * (static_cast<double>(entry.GetSize()) - entry.GetArchivedSize()) /
           entry.GetSize();
}

void PrintEntry(const ArchiveEntry& entry) {
    std::printf("%-8s %12llu %12llu %6.1f%% %08x  %s\n", MethodName(entry.GetMethod()),
                static_cast<unsigned long long>(entry.GetSize()),
                static_cast<unsigned long long>(entry.GetArchivedSize()), SavedPercent(entry),
                entry.GetCrc(), entry.GetName().ToPrintf());
}

void PrintHeaders(const ArchiveEntry& entry) {
    const std::map<Yr::UniString, Yr::UniString> sorted(entry.EnumerateHeaders().begin(),
                                                        entry.EnumerateHeaders().end());
    for (const auto& [name, value] : sorted)
        std::printf("    %s=%s\n", name.ToPrintf(), value.ToPrintf());
}

}  // namespace

ArchiveListCommand::ArchiveListCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "list", "List the entries of an archive, checking each") {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive to read; - reads standard input")
        ->required()
        ->type_name("FILE");
    m_subcommand->add_flag("-l,--long", m_long,
                           "Also show each entry's headers, indented below it");
}

void ArchiveListCommand::Execute() {
    ArchiveReader reader(m_archive);
    std::printf("%-8s %12s %12s %7s %-8s  %s\n", "method", "size", "archived", "saved", "crc",
                "name");
    reader.ForEach([&](const ArchiveEntry& entry) {
        reader.Leave();
        PrintEntry(entry);
        if (m_long) PrintHeaders(entry);
        return true;
    });
}

}  // namespace Morvelan::Tool
