#include "cli/ZipListCommand.h"

#include <cstdio>
#include <ctime>

#include "cli/ZipReader.h"

namespace Morvelan::Tool {
namespace {

using Common::IO::ZipEntry;

std::string MethodName(const ZipEntry& entry) {
    switch (entry.GetMethod()) {
        case ZipEntry::Stored:
            return "stored";
        case ZipEntry::Deflated:
            return "deflated";
        default:
            return "method-" + std::to_string(entry.GetMethod());
    }
}

// The share of the size that compression saved, as zip lists it.
double SavedPercent(const ZipEntry& entry) {
    if (entry.GetSize() == 0) return 0;
    return 100.0 * (static_cast<double>(entry.GetSize()) - entry.GetCompressedSize()) /
           entry.GetSize();
}

// In UTC, so that a listing reads the same wherever it is made.
std::string FormatTime(Yr::Int64 unixSeconds) {
    const std::time_t time = unixSeconds;
    std::tm fields{};
    gmtime_r(&time, &fields);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &fields);
    return text;
}

void PrintEntry(const ZipEntry& entry) {
    std::printf("%-8s %12llu %12llu %6.1f%% %08x  %s  %s\n", MethodName(entry).c_str(),
                static_cast<unsigned long long>(entry.GetSize()),
                static_cast<unsigned long long>(entry.GetCompressedSize()), SavedPercent(entry),
                entry.GetCrc(), FormatTime(entry.GetTime()).c_str(), entry.GetName().ToPrintf());
}

}  // namespace

ZipListCommand::ZipListCommand(CLI::App& zip)
    : ArchiveSubcommand(zip, "list", "List the entries of a zip file, checking each") {
    m_subcommand->add_option("ZIPFILE", m_zip, "The zip file to read; - reads standard input")
        ->required()
        ->type_name("FILE");
}

void ZipListCommand::Execute() {
    ZipReader reader(m_zip);
    std::printf("%-8s %12s %12s %7s %-8s  %-16s  %s\n", "method", "size", "compressed", "saved",
                "crc", "modified (UTC)", "name");
    reader.ForEach([&](const ZipEntry& entry) {
        reader.Leave();
        PrintEntry(entry);
        return true;
    });
    const Yr::UniString comment = reader.GetComment();
    if (!comment.IsEmpty()) std::printf("comment: %s\n", comment.ToPrintf());
}

}  // namespace Morvelan::Tool
