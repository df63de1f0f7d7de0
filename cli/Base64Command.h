#pragma once

#include <string>

#include "cli/Command.h"

namespace Morvelan::Tool {

// `morvelan base64 encode|decode [--url-safe] [FILE]`: Base64 text from
// bytes and back, from a file or standard input to standard output, as the
// coreutils program does; encoded lines break at 76 characters unless -w
// says otherwise.
class Base64Command final : public Command {
public:
    explicit Base64Command(CLI::App& parent);
    int Run() override;

private:
    void Execute() const;

    CLI::App* m_encode = nullptr;
    CLI::App* m_decode = nullptr;
    std::string m_file = "-";
    bool m_urlSafe = false;
    unsigned m_columns = 76;
};

}  // namespace Morvelan::Tool
