#pragma once

#include <memory>

#include "Common/IO/ThresholdingOBinaryChannel.h"
#include "InputOutput/Location.h"

namespace Morvelan::Common::IO {

// Keeps up to `threshold` bytes in memory and creates the file at the
// location only when a write would pass it, moving the bytes held so far
// there first. After Close, WriteTo copies the data, from memory or from the
// file, to another channel. The file is the caller's: it is never deleted.
class DeferredFileOBinaryChannel final : public ThresholdingOBinaryChannel {
public:
    // A threshold of 0 or above 4294967295 and an invalid location throw
    // IllegalArgumentException.
    DeferredFileOBinaryChannel(const ::IO::Location& location, Yr::UInt64 threshold);
    ~DeferredFileOBinaryChannel() override;

    const ::IO::Location& GetLocation() const { return m_location; }
    // Writes everything written to `output`; only once closed.
    void WriteTo(Yr::OBinaryChannel& output) const;

protected:
    Yr::OBinaryChannel& GetOutputChannel() override;
    const Yr::OBinaryChannel& GetOutputChannel() const override;
    // Moves the memory bytes to a new file, which takes all further writes.
    void ThresholdReached() override;

private:
    std::unique_ptr<Yr::OBinaryChannel> m_output;  // memory, then the file
    ::IO::Location m_location;
};

}  // namespace Morvelan::Common::IO
