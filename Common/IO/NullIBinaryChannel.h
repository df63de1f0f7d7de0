#pragma once

#include "Yr/IBinaryChannel.h"

namespace Morvelan::Common::IO {

// An input channel that is always at the end of its stream.
class NullIBinaryChannel final : public Yr::IBinaryChannel {
public:
    NullIBinaryChannel() = default;
    NullIBinaryChannel(const NullIBinaryChannel&) = delete;
    NullIBinaryChannel& operator=(const NullIBinaryChannel&) = delete;
    ~NullIBinaryChannel() override;

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;
};

}  // namespace Morvelan::Common::IO
