#include "Common/IO/NullIBinaryChannel.h"

namespace Morvelan::Common::IO {

NullIBinaryChannel::~NullIBinaryChannel() = default;

// The arguments go unchecked: nothing is ever written to the buffer.
Yr::UInt32 NullIBinaryChannel::Read(char*, Yr::UInt32, Yr::ReadSomeModeSelector) {
    return 0;
}

Yr::UInt64 NullIBinaryChannel::GetAvailable() const {
    return 0;
}

void NullIBinaryChannel::Close() {}

}  // namespace Morvelan::Common::IO
