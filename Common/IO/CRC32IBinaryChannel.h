#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

#include "Common/IO/CRC32.h"

namespace Morvelan::Common::IO {

// Passes reads through and keeps the CRC-32 of the bytes read. A borrowed
// inner channel must outlive the filter; a shared one is kept alive by it.
// Close() closes the inner channel; destruction leaves it open.
class CRC32IBinaryChannel final : public Yr::IBinaryChannel {
public:
    explicit CRC32IBinaryChannel(Yr::IBinaryChannel& inner);
    explicit CRC32IBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    CRC32IBinaryChannel(const CRC32IBinaryChannel&) = delete;
    CRC32IBinaryChannel& operator=(const CRC32IBinaryChannel&) = delete;
    ~CRC32IBinaryChannel() override;

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

    // CRC-32 of the bytes read since construction or the last Reset().
    Yr::UInt32 GetCRC() const { return m_crc.GetValue(); }
    void Reset() { m_crc.Reset(); }

private:
    Yr::Ref<Yr::IBinaryChannel> m_innerRef;  // empty when borrowed
    Yr::IBinaryChannel& m_inner;             // every call goes through this
    CRC32 m_crc;
};

}  // namespace Morvelan::Common::IO
