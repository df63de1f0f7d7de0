#pragma once

#include <string>

#include "Yr/IBinaryChannel.h"

namespace Morvelan::Tool {

// Reads a file, or an already open descriptor such as standard input,
// through the operating-system seam. Close releases only what it opened.
class FileIBinaryChannel final : public Yr::IBinaryChannel {
public:
    explicit FileIBinaryChannel(const std::string& path);
    static FileIBinaryChannel StandardInput();
    FileIBinaryChannel(FileIBinaryChannel&& other) noexcept;
    ~FileIBinaryChannel() override;

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override { return 0; }
    void Close() override;

private:
    FileIBinaryChannel(int descriptor, std::string name, bool owned);

    int m_descriptor;
    std::string m_name;
    bool m_owned;
};

}  // namespace Morvelan::Tool
