#pragma once

#include "Yr/FilterOBinaryChannel.h"

#include "Common/IO/CRC32.h"

namespace Morvelan::Common::IO {

// Passes writes through and keeps the CRC-32 of the bytes written. A borrowed
// inner channel must outlive the filter; a shared one is kept alive by it.
// Close() closes the inner channel; destruction leaves it open.
class CRC32OBinaryChannel final : public Yr::FilterOBinaryChannel {
public:
    explicit CRC32OBinaryChannel(Yr::OBinaryChannel& inner);
    explicit CRC32OBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner);
    ~CRC32OBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;

    // CRC-32 of the bytes written since construction or the last Reset().
    Yr::UInt32 GetCRC() const { return m_crc.GetValue(); }
    void Reset() { m_crc.Reset(); }

private:
    CRC32 m_crc;
};

}  // namespace Morvelan::Common::IO
