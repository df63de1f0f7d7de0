#pragma once

#include <string>

#include "cli/ArchiveSubcommand.h"

namespace Morvelan::Tool {

// `morvelan zip list ZIPFILE`: one line per entry (method, size, compressed
// size, share saved, CRC-32, modification time, name), checking each entry
// as it goes, then the zip file's comment if it has one.
class ZipListCommand final : public ArchiveSubcommand {
public:
    explicit ZipListCommand(CLI::App& zip);

protected:
    void Execute() override;

private:
    std::string m_zip;
};

}  // namespace Morvelan::Tool
