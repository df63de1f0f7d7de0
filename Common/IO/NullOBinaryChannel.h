#pragma once

#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {

// An output channel that discards everything written to it.
class NullOBinaryChannel final : public Yr::OBinaryChannel {
public:
    NullOBinaryChannel() = default;
    NullOBinaryChannel(const NullOBinaryChannel&) = delete;
    NullOBinaryChannel& operator=(const NullOBinaryChannel&) = delete;
    ~NullOBinaryChannel() override;

    // Accepts any arguments, a null buffer too: nothing is read from it.
    void Write(const char* buffer, Yr::UInt32 size) override;
    void Flush() override;
    void Close() override;
};

}  // namespace Morvelan::Common::IO
