#pragma once

#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Common::IO {

// Passes through bytes [offset, offset + length) of the inner stream, counted
// from its position at construction. The prefix is skipped on first use, by
// Read or GetAvailable. Close() closes the inner channel once and makes later
// calls throw; destruction leaves it open. A borrowed inner channel must
// outlive the filter; a shared one is kept alive by it.
class RangeIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    // `length` must be neither 0 nor the largest UInt64, `offset` not the
    // largest UInt64; offset + length is not checked for overflow.
    RangeIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt64 offset, Yr::UInt64 length);
    RangeIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner, Yr::UInt64 offset,
                        Yr::UInt64 length);
    ~RangeIBinaryChannel() override;

    using Yr::FilterIBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    // Skips the prefix too, although const: a query consumes it like a read.
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

private:
    void CheckOpened(const char* sourceFile, Yr::UInt32 line) const;
    void EnsurePrefixSkipped();
    Yr::UInt64 GetRemaining() const;

    Yr::UInt64 m_start;
    Yr::UInt64 m_end;
    // Bytes this filter took from the inner channel; mutable for GetAvailable.
    mutable Yr::UInt64 m_position = 0;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
