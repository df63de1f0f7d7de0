#include "cli/ArchiveHeaderCommand.h"

#include <cstdio>
#include <map>

#include "Common/IO/ArchiveFile.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

// Updating rewrites the file, which standard input cannot offer.
std::string CheckArchiveFile(const std::string& argument) {
    return argument == "-" ? "header needs an archive file, not standard input" : std::string();
}

void PrintHeaders(Common::IO::ArchiveFile& archive) {
    std::printf("# reserved header size: %lu\n",
                static_cast<unsigned long>(archive.GetReservedHeaderSize()));
    const std::map<Yr::UniString, Yr::UniString> sorted(archive.EnumerateHeaders().begin(),
                                                        archive.EnumerateHeaders().end());
    for (const auto& [name, value] : sorted)
        std::printf("%s=%s\n", name.ToPrintf(), value.ToPrintf());
}

}  // namespace

ArchiveHeaderCommand::ArchiveHeaderCommand(CLI::App& archive)
    : ArchiveSubcommand(archive, "header", "Show or change the headers of an archive file") {
    m_subcommand->add_option("ARCHIVE", m_archive, "The archive file (not standard input)")
        ->required()
        ->type_name("FILE")
        ->check(CLI::Validator(CheckArchiveFile, ""));
    m_subcommand->add_option("--set", m_sets, "Set header NAME to VALUE (repeatable)")
        ->type_name("NAME=VALUE")
        ->check(CLI::Validator(CheckNameValue, ""));
    m_subcommand
        ->add_option("--clear", m_clears, "Remove header NAME (repeatable; done before the sets)")
        ->type_name("NAME");
}

void ArchiveHeaderCommand::Execute() {
    Common::IO::ArchiveFile archive(LocationOfArgument(m_archive));
    if (m_sets.empty() && m_clears.empty()) return PrintHeaders(archive);
    for (const std::string& name : m_clears)
        archive.ClearHeader(Yr::UniString(name.c_str(), name.size()));
    for (const std::string& assignment : m_sets) {
        const auto [name, value] = SplitNameValue(assignment);
        archive.PutHeader(name, value);
    }
    archive.Update();
    archive.Close();
}

}  // namespace Morvelan::Tool
