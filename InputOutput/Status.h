#pragma once

#include "Yr/Types.h"

namespace IO {

// Status of a file-system call; 0 is success. The values are those the
// library tests by value; other failures keep their own codes.
using Status = Yr::UInt32;

inline constexpr Status kSuccess = 0;
inline constexpr Status kEndOfFile = 0x81000100;
inline constexpr Status kReadError = 0x81000101;
inline constexpr Status kDiskFull = 0x81000200;
inline constexpr Status kFileNotFound = 0x81010100;
inline constexpr Status kNotFile = 0x81010101;
inline constexpr Status kFileAccessDenied = 0x81010102;
inline constexpr Status kFolderNotFound = 0x81010200;
inline constexpr Status kNotFolder = 0x81010201;
inline constexpr Status kFolderAccessDenied = 0x81010202;
inline constexpr Status kFolderDiskFull = 0x81010207;
inline constexpr Status kFileSystemFileNotFound = 0x81010300;
inline constexpr Status kFileSystemFolderNotFound = 0x81010301;
inline constexpr Status kFileSystemNotFile = 0x81010305;
inline constexpr Status kFileSystemNotFolder = 0x81010306;
inline constexpr Status kFileSystemAccessDenied = 0x81010307;
inline constexpr Status kFileSystemDiskFull = 0x81010308;
// A text or a change the location types cannot carry: a path of the wrong
// kind, a name with a separator in it, a name that is not there.
inline constexpr Status kInvalidLocation = 0x81010310;
// Any other operating-system failure: the errno rides in the low 16 bits.
inline constexpr Status kSystemErrorBase = 0x81020000;

}  // namespace IO
