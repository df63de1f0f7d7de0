#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Whole-stream work on channels: copying, comparing, skipping, writing zeros.
// Each function comes for borrowed channels and for every mix of borrowed and
// shared ones; the shared forms reject empty references (input "Invalid input
// channel: channel is null.", output "Invalid output channel: ...") and then
// do the borrowed form's work. No function flushes or closes a channel, and
// exceptions of the channels pass through unchanged.
class BinaryChannelUtilities final {
public:
    BinaryChannelUtilities() = delete;

    // Copies up to `length` bytes through one buffer of `bufferSize` bytes
    // (0 throws); returns the count, less than `length` if the input ended.
    // Both shared: the output is checked before the input.
    static Yr::UInt64 Copy(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output, Yr::UInt64 length,
                           Yr::UInt32 bufferSize);
    static Yr::UInt64 Copy(const Yr::Ref<Yr::IBinaryChannel>& input, Yr::OBinaryChannel& output,
                           Yr::UInt64 length, Yr::UInt32 bufferSize);
    static Yr::UInt64 Copy(Yr::IBinaryChannel& input, const Yr::Ref<Yr::OBinaryChannel>& output,
                           Yr::UInt64 length, Yr::UInt32 bufferSize);
    static Yr::UInt64 Copy(const Yr::Ref<Yr::IBinaryChannel>& input,
                           const Yr::Ref<Yr::OBinaryChannel>& output, Yr::UInt64 length,
                           Yr::UInt32 bufferSize);

    // Copies to the end of the input; as Copy otherwise.
    static Yr::UInt64 CopyAll(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output,
                              Yr::UInt32 bufferSize);
    static Yr::UInt64 CopyAll(const Yr::Ref<Yr::IBinaryChannel>& input, Yr::OBinaryChannel& output,
                              Yr::UInt32 bufferSize);
    static Yr::UInt64 CopyAll(Yr::IBinaryChannel& input, const Yr::Ref<Yr::OBinaryChannel>& output,
                              Yr::UInt32 bufferSize);
    static Yr::UInt64 CopyAll(const Yr::Ref<Yr::IBinaryChannel>& input,
                              const Yr::Ref<Yr::OBinaryChannel>& output, Yr::UInt32 bufferSize);

    // Whether both streams hold the same bytes. Both are consumed up to the
    // point of decision.
    static bool ContentEquals(Yr::IBinaryChannel& first, Yr::IBinaryChannel& second);
    static bool ContentEquals(const Yr::Ref<Yr::IBinaryChannel>& first, Yr::IBinaryChannel& second);
    static bool ContentEquals(Yr::IBinaryChannel& first, const Yr::Ref<Yr::IBinaryChannel>& second);
    static bool ContentEquals(const Yr::Ref<Yr::IBinaryChannel>& first,
                              const Yr::Ref<Yr::IBinaryChannel>& second);

    // Reads and drops up to `count` bytes; returns the count dropped.
    static Yr::UInt64 Skip(Yr::IBinaryChannel& input, Yr::UInt64 count);
    static Yr::UInt64 Skip(const Yr::Ref<Yr::IBinaryChannel>& input, Yr::UInt64 count);

    // Writes `count` zero bytes, at most 1024 per Write.
    static void FillWithZeros(Yr::OBinaryChannel& output, Yr::UInt64 count);
    static void FillWithZeros(const Yr::Ref<Yr::OBinaryChannel>& output, Yr::UInt64 count);
};

}  // namespace Morvelan::Common::IO
