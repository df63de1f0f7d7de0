#pragma once

#include "Yr/FilterOBinaryChannel.h"

namespace Morvelan::Common::IO {

// Passes writes through and counts their bytes. A borrowed inner channel must
// outlive the filter; a shared one is kept alive by it. Close() closes the
// inner channel; destruction leaves it open.
class CountingOBinaryChannel final : public Yr::FilterOBinaryChannel {
public:
    explicit CountingOBinaryChannel(Yr::OBinaryChannel& inner);
    explicit CountingOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner);
    ~CountingOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;

    // Bytes written since construction or the last ResetCount().
    Yr::UInt64 GetCount() const { return m_count; }
    void ResetCount() { m_count = 0; }

private:
    Yr::UInt64 m_count = 0;
};

}  // namespace Morvelan::Common::IO
