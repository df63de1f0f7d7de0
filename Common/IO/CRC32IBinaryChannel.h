#pragma once

#include "Yr/FilterIBinaryChannel.h"

#include "Common/IO/CRC32.h"

namespace Morvelan::Common::IO {

// Passes reads through and keeps the CRC-32 of the bytes read. A borrowed
// inner channel must outlive the filter; a shared one is kept alive by it.
// Close() closes the inner channel; destruction leaves it open.
class CRC32IBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    explicit CRC32IBinaryChannel(Yr::IBinaryChannel& inner);
    explicit CRC32IBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    ~CRC32IBinaryChannel() override;

    using Yr::FilterIBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;

    // CRC-32 of the bytes read since construction or the last Reset().
    Yr::UInt32 GetCRC() const { return m_crc.GetValue(); }
    void Reset() { m_crc.Reset(); }

private:
    CRC32 m_crc;
};

}  // namespace Morvelan::Common::IO
