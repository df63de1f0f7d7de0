#pragma once

#include "Yr/Types.h"

namespace Yr {

// Tags that choose between the two Read operations.
enum class ReadSomeModeSelector {};
enum class ReadAllModeSelector {};
inline constexpr ReadSomeModeSelector kReadSome{};
inline constexpr ReadAllModeSelector kReadAll{};

// A source of bytes. Used by one thread at a time.
class IBinaryChannel {
public:
    IBinaryChannel() = default;
    IBinaryChannel(const IBinaryChannel&) = delete;
    IBinaryChannel& operator=(const IBinaryChannel&) = delete;

    // Reads at least one and at most `size` bytes; returns 0 only at the end
    // of the stream, and again on every later call.
    virtual UInt32 Read(char* buffer, UInt32 size, ReadSomeModeSelector) = 0;
    // Reads exactly `size` bytes; a stream that ends first throws
    // EndOfInputException "End of input reached.".
    virtual void Read(char* buffer, UInt32 size, ReadAllModeSelector);
    // Bytes that can be read now without waiting.
    virtual UInt64 GetAvailable() const = 0;
    virtual void Close() = 0;
    virtual ~IBinaryChannel() = default;
};

}  // namespace Yr
