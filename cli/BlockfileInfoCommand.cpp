#include "cli/BlockfileInfoCommand.h"

#include <cstdio>
#include <string>
#include <vector>

#include "Common/Containers/BlockFileScanner.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

using Common::Containers::BlockFileScanner;

void PrintField(const char* name, const std::string& value) {
    std::printf("%-20s%s\n", (std::string(name) + ":").c_str(), value.c_str());
}

// The four bytes in file order; any that is not printable ASCII as \xNN, so
// a wrong magic shows what it is.
std::string MagicText(Yr::UInt32 magic) {
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) {
        const unsigned byte = (magic >> shift) & 0xFF;
        if (byte >= 0x20 && byte < 0x7F) {
            text += static_cast<char>(byte);
        } else {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            text += escaped;
        }
    }
    return text;
}

// "3 (4 9 12)": how many, then which.
std::string CountAndList(const std::vector<Yr::UInt32>& blocks) {
    std::string text = std::to_string(blocks.size());
    for (std::size_t i = 0; i < blocks.size(); ++i)
        text += (i == 0 ? " (" : " ") + std::to_string(blocks[i]);
    return blocks.empty() ? text : text + ")";
}

void PrintHeader(const BlockFileScanner::Header& header, Yr::UInt64 fileSize) {
    PrintField("magic", MagicText(header.magic));
    PrintField("version",
               std::to_string(header.majorVersion) + "." + std::to_string(header.minorVersion));
    PrintField("block count", std::to_string(header.blockCount));
    PrintField("block size", std::to_string(header.blockSize));
    PrintField("file size", std::to_string(fileSize));
    PrintField("master list head", std::to_string(header.masterListHead));
    PrintField("free list head", std::to_string(header.freeListHead));
    PrintField("free block count", std::to_string(header.freeBlockCount));
}

}  // namespace

BlockfileInfoCommand::BlockfileInfoCommand(CLI::App& blockfile)
    : BlockfileSubcommand(blockfile, "info",
                          "Show the header, the free list and the master blocks of a block file") {}

int BlockfileInfoCommand::Execute() {
    const BlockFileScanner scanner(LocationOfArgument(GetFile()));
    if (scanner.HasHeader())
        PrintHeader(scanner.GetHeader(), scanner.GetFileSize());
    else
        PrintField("file size", std::to_string(scanner.GetFileSize()));
    if (scanner.HasWalkedLists()) {
        PrintField("free list length", std::to_string(scanner.GetFreeListLength()));
        PrintField("master list blocks", CountAndList(scanner.GetMasterListBlocks()));
        PrintField("master blocks", CountAndList(scanner.GetMasterBlocks()));
    }
    if (!scanner.IsClean())
        PrintField("problems", std::to_string(scanner.GetFaults().size()) +
                                   " (morvelan blockfile check lists them)");
    return 0;
}

}  // namespace Morvelan::Tool
