#include "Common/IO/NullOBinaryChannel.h"

namespace Morvelan::Common::IO {

NullOBinaryChannel::~NullOBinaryChannel() = default;

void NullOBinaryChannel::Write(const char*, Yr::UInt32) {}

void NullOBinaryChannel::Flush() {}

void NullOBinaryChannel::Close() {}

}  // namespace Morvelan::Common::IO
