#pragma once

#include "Yr/Types.h"

namespace Yr {

// A sink of bytes. Used by one thread at a time.
class OBinaryChannel {
public:
    OBinaryChannel() = default;
    OBinaryChannel(const OBinaryChannel&) = delete;
    OBinaryChannel& operator=(const OBinaryChannel&) = delete;

    // Writes all `size` bytes; there is no partial write.
    virtual void Write(const char* buffer, UInt32 size) = 0;
    virtual void Flush() = 0;
    virtual void Close() = 0;
    virtual ~OBinaryChannel() = default;
};

}  // namespace Yr
