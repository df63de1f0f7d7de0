#pragma once

#include "Yr/Types.h"

namespace Yr {

// The error codes every exception of the library carries, one per family.
inline constexpr int kIllegalArgumentErrorCode = -50;
inline constexpr int kOutOfMemoryErrorCode = -108;
inline constexpr int kIOErrorCode = -7003;

// Codes of the base library's own stream and data faults.
inline constexpr int kEndOfInputErrorCode = static_cast<int>(0x81000100u);
inline constexpr int kDataIntegrityErrorCode = static_cast<int>(0x81000000u);
// Statuses of error-code readers and writers whose failure was an exception
// inside them rather than a status of the channel.
inline constexpr int kReadErrorCode = static_cast<int>(0x81000101u);
inline constexpr int kWriteErrorCode = static_cast<int>(0x81000201u);

}  // namespace Yr
