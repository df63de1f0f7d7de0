// morvelan: archives, zip files, block files and checksums from the shell.
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "cli/ArchiveCommand.h"
#include "cli/Base64Command.h"
#include "cli/BlockfileCommand.h"
#include "cli/Crc32Command.h"
#include "cli/ZipCommand.h"

namespace {

constexpr int kUsageError = 2;

}  // namespace

int main(int argc, char** argv) {
    // Archive entries allocate and free their buffers, a few hundred KiB, one
    // entry after another: kept rather than handed back to the system, the
    // memory is not faulted in afresh for every entry.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    CLI::App app("Archives, zip files, block files and checksums.", "morvelan");
    app.require_subcommand(1);
    app.set_version_flag("--version", "morvelan 0.1.0");

    std::vector<std::unique_ptr<Morvelan::Tool::Command>> commands;
    commands.push_back(std::make_unique<Morvelan::Tool::ArchiveCommand>(app));
    commands.push_back(std::make_unique<Morvelan::Tool::Base64Command>(app));
    commands.push_back(std::make_unique<Morvelan::Tool::BlockfileCommand>(app));
    commands.push_back(std::make_unique<Morvelan::Tool::Crc32Command>(app));
    commands.push_back(std::make_unique<Morvelan::Tool::ZipCommand>(app));

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsageError;
    }
    for (auto& command : commands)
        if (command->IsChosen()) return command->Run();
    return kUsageError;
}
