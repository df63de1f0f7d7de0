#pragma once

#include <CLI/CLI.hpp>

namespace Morvelan::Tool {

// One subcommand of the tool: a derived class declares its options on a
// subcommand of the parent it is given, and runs once they are parsed.
class Command {
public:
    virtual ~Command() = default;
    // The process exit status.
    virtual int Run() = 0;
    bool IsChosen() const { return m_subcommand != nullptr && m_subcommand->parsed(); }

protected:
    CLI::App* m_subcommand = nullptr;
};

}  // namespace Morvelan::Tool
