#pragma once

#include <string>
#include <vector>

#include "cli/Command.h"

namespace Morvelan::Tool {

// `morvelan crc32 [FILE...]`: the CRC-32 and size of each file, or of
// standard input, one line each as "crc size name", like cksum.
class Crc32Command final : public Command {
public:
    explicit Crc32Command(CLI::App& parent);
    int Run() override;

private:
    std::vector<std::string> m_files;
};

}  // namespace Morvelan::Tool
