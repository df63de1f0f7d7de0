#pragma once

#include "Yr/OBinaryChannel.h"

namespace Morvelan::Tool {

// Writes to the process's standard output, whatever it is (a file, a pipe,
// a terminal): no truncation, no lock, and Close leaves the descriptor open
// for the process to end with. Unbuffered: every write is a system call.
class StandardOutputChannel final : public Yr::OBinaryChannel {
public:
    void Write(const char* buffer, Yr::UInt32 size) override;
    void Flush() override {}
    void Close() override {}
};

}  // namespace Morvelan::Tool
