#pragma once

#include <memory>

#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

class QlzIBinaryChannelImpl;

// Reads a QuickLZ packet stream, as QlzOBinaryChannel writes it, from the
// inner channel and yields the uncompressed bytes; Read returns 0 where the
// inner stream ends between packets. A damaged stream throws Yr::IOException
// (or the inner channel's exception) and never makes it read or write outside
// its buffers; packet sizes above QlzOBinaryChannel::MaximumPacketSize are
// refused. Close() closes the inner channel; destruction leaves it open.
class QlzIBinaryChannel final : public Yr::IBinaryChannel {
public:
    explicit QlzIBinaryChannel(Yr::IBinaryChannel& inner);
    explicit QlzIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner);
    ~QlzIBinaryChannel() override;

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    // The decompressed bytes at hand, which can be read without touching the
    // inner channel.
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

private:
    std::unique_ptr<QlzIBinaryChannelImpl> m_impl;
};

}  // namespace Morvelan::Common::IO
