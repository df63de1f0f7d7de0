#pragma once

#include <string>

#include "cli/Command.h"

namespace Morvelan::Tool {

// One subcommand of `morvelan blockfile`, taking the block file as its one
// argument. Run reports a file that cannot be read as one line on standard
// error, "morvelan blockfile NAME: " and what went wrong, and exits with 2,
// as usage errors do: 1 is left to `check` for "damaged".
class BlockfileSubcommand : public Command {
public:
    static constexpr int kDamaged = 1;
    static constexpr int kUsageOrFileError = 2;

    int Run() final;

protected:
    BlockfileSubcommand(CLI::App& blockfile, const std::string& name,
                        const std::string& description);
    // The exit status.
    virtual int Execute() = 0;
    const std::string& GetFile() const { return m_file; }

private:
    std::string m_name;
    std::string m_file;
};

}  // namespace Morvelan::Tool
