#include "Common/GetErrorMessage.h"

#include <cstring>

namespace Morvelan::Common {
namespace {

const char* Describe(::IO::Status status) {
    switch (status) {
        case ::IO::kFileNotFound:
            return "File is not found";
        case ::IO::kNotFile:
            return "Not a file";
        case ::IO::kNotFolder:
            return "Not a folder";
        case ::IO::kFileAccessDenied:
            return "Access is denied";
        case ::IO::kDiskFull:
            return "Disk is full";
        case ::IO::kEndOfFile:
            return "End of file reached";
        default:
            return nullptr;
    }
}

}  // namespace

Yr::UniString GetErrorMessage(const char* text, ::IO::Status status) {
    if (const char* detail = Describe(status))
        return Yr::UniString::Printf("%s. %s.", text, detail);
    if ((status & 0xFFFF0000u) == ::IO::kSystemErrorBase) {
        const int error = static_cast<int>(status & 0xFFFFu);
        return Yr::UniString::Printf("%s. %s (system error %d).", text, std::strerror(error),
                                     error);
    }
    return Yr::UniString::Printf("%s. (Error code: %d)", text, static_cast<int>(status));
}

}  // namespace Morvelan::Common
