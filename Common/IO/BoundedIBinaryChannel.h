#pragma once

#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Common::IO {

// Reads at most `limit` bytes of the inner channel, then reports the end of
// the stream without asking the inner channel again. A borrowed inner channel
// must outlive the filter; a shared one is kept alive by it. Close() closes
// the inner channel; destruction leaves it open.
class BoundedIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    BoundedIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt64 limit);
    BoundedIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner, Yr::UInt64 limit);
    ~BoundedIBinaryChannel() override;

    using Yr::FilterIBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    // The inner channel's answer, capped by what the limit leaves.
    Yr::UInt64 GetAvailable() const override;

private:
    Yr::UInt64 m_readSoFar = 0;
    Yr::UInt64 m_limit;
};

}  // namespace Morvelan::Common::IO
