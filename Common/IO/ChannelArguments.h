#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// The checks every filter makes of its arguments, with the caller's source
// unit and line so the exception points at the filter that was misused.

// The inner channel of a shared reference; an empty one throws
// IllegalArgumentException "Invalid input channel: channel is null.".
Yr::IBinaryChannel& RequireInput(const Yr::Ref<Yr::IBinaryChannel>& channel, const char* sourceFile,
                                 Yr::UInt32 line);
// As RequireInput, with "Invalid output channel: channel is null.".
Yr::OBinaryChannel& RequireOutput(const Yr::Ref<Yr::OBinaryChannel>& channel,
                                  const char* sourceFile, Yr::UInt32 line);
// A null buffer or a size of 0 throws "Invalid target buffer: ...".
void CheckTargetBuffer(const char* buffer, Yr::UInt32 size, const char* sourceFile,
                       Yr::UInt32 line);

}  // namespace Morvelan::Common::IO
