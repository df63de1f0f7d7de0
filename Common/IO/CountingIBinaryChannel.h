#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Passes reads through and counts the bytes they return. A borrowed inner
// channel must outlive the filter; a shared one is kept alive by it. Close()
// closes the inner channel; destruction leaves it open.
class CountingIBinaryChannel final : public Yr::IBinaryChannel {
public:
    explicit CountingIBinaryChannel(Yr::IBinaryChannel& inner);
    explicit CountingIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    CountingIBinaryChannel(const CountingIBinaryChannel&) = delete;
    CountingIBinaryChannel& operator=(const CountingIBinaryChannel&) = delete;
    ~CountingIBinaryChannel() override;

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

    // Bytes read since construction or the last ResetCount().
    Yr::UInt64 GetCount() const { return m_count; }
    void ResetCount() { m_count = 0; }

private:
    Yr::Ref<Yr::IBinaryChannel> m_innerRef;  // empty when borrowed
    Yr::IBinaryChannel& m_inner;             // every call goes through this
    Yr::UInt64 m_count = 0;
};

}  // namespace Morvelan::Common::IO
