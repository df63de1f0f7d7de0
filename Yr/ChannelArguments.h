#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Yr {

// The checks every filter makes of its arguments, with the caller's source
// unit and line so the exception points at the filter that was misused.

// The inner channel of a shared reference; an empty one throws
// IllegalArgumentException "Invalid input channel: channel is null.".
IBinaryChannel& RequireInput(const Ref<IBinaryChannel>& channel, const char* sourceFile,
                             UInt32 line);
// As RequireInput, with "Invalid output channel: channel is null.".
OBinaryChannel& RequireOutput(const Ref<OBinaryChannel>& channel, const char* sourceFile,
                              UInt32 line);
// A null buffer or a size of 0 throws "Invalid target buffer: ...".
void CheckTargetBuffer(const char* buffer, UInt32 size, const char* sourceFile, UInt32 line);
// A size of 0 throws "Invalid buffer size: size is 0."; returns the size.
UInt32 CheckBufferSize(UInt32 size, const char* sourceFile, UInt32 line);

}  // namespace Yr
