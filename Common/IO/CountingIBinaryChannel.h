#pragma once

#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Common::IO {

// Passes reads through and counts the bytes they return. A borrowed inner
// channel must outlive the filter; a shared one is kept alive by it. Close()
// closes the inner channel; destruction leaves it open.
class CountingIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    explicit CountingIBinaryChannel(Yr::IBinaryChannel& inner);
    explicit CountingIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    ~CountingIBinaryChannel() override;

    using Yr::FilterIBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;

    // Bytes read since construction or the last ResetCount().
    Yr::UInt64 GetCount() const { return m_count; }
    void ResetCount() { m_count = 0; }

private:
    Yr::UInt64 m_count = 0;
};

}  // namespace Morvelan::Common::IO
