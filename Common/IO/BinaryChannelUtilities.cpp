#include "Common/IO/BinaryChannelUtilities.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannelUtilities.h"
#include "Yr/MemoryBlock.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/BinaryChannelUtilities";
// Stack buffers of the functions that take no buffer size.
constexpr Yr::UInt32 kCompareBufferSize = 4096;
constexpr Yr::UInt32 kScratchSize = 1024;

Yr::MemoryBlock AllocateCopyBuffer(Yr::UInt32 bufferSize) {
    return Yr::AllocateMemoryBlock(Yr::CheckBufferSize(bufferSize, kSourceUnit, __LINE__));
}

// The copy loop of Copy and CopyAll; CopyAll passes the largest length.
Yr::UInt64 CopyUpTo(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output, Yr::UInt64 length,
                    Yr::UInt32 bufferSize) {
    const Yr::MemoryBlock buffer = AllocateCopyBuffer(bufferSize);
    Yr::UInt64 copied = 0;
    while (copied < length) {
        const auto wanted =
            static_cast<Yr::UInt32>(std::min<Yr::UInt64>(bufferSize, length - copied));
        const Yr::UInt32 count = input.Read(buffer.get(), wanted, Yr::kReadSome);
        if (count == 0) break;
        output.Write(buffer.get(), count);
        copied += count;
    }
    return copied;
}

}  // namespace

Yr::UInt64 BinaryChannelUtilities::Copy(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output,
                                        Yr::UInt64 length, Yr::UInt32 bufferSize) {
    return CopyUpTo(input, output, length, bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::Copy(const Yr::Ref<Yr::IBinaryChannel>& input,
                                        Yr::OBinaryChannel& output, Yr::UInt64 length,
                                        Yr::UInt32 bufferSize) {
    return Copy(Yr::RequireInput(input, kSourceUnit, __LINE__), output, length, bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::Copy(Yr::IBinaryChannel& input,
                                        const Yr::Ref<Yr::OBinaryChannel>& output,
                                        Yr::UInt64 length, Yr::UInt32 bufferSize) {
    return Copy(input, Yr::RequireOutput(output, kSourceUnit, __LINE__), length, bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::Copy(const Yr::Ref<Yr::IBinaryChannel>& input,
                                        const Yr::Ref<Yr::OBinaryChannel>& output,
                                        Yr::UInt64 length, Yr::UInt32 bufferSize) {
    // Output before input: with both missing, the output is the one named.
    Yr::OBinaryChannel& target = Yr::RequireOutput(output, kSourceUnit, __LINE__);
    return Copy(Yr::RequireInput(input, kSourceUnit, __LINE__), target, length, bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::CopyAll(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output,
                                           Yr::UInt32 bufferSize) {
    return CopyUpTo(input, output, std::numeric_limits<Yr::UInt64>::max(), bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::CopyAll(const Yr::Ref<Yr::IBinaryChannel>& input,
                                           Yr::OBinaryChannel& output, Yr::UInt32 bufferSize) {
    return CopyAll(Yr::RequireInput(input, kSourceUnit, __LINE__), output, bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::CopyAll(Yr::IBinaryChannel& input,
                                           const Yr::Ref<Yr::OBinaryChannel>& output,
                                           Yr::UInt32 bufferSize) {
    return CopyAll(input, Yr::RequireOutput(output, kSourceUnit, __LINE__), bufferSize);
}

Yr::UInt64 BinaryChannelUtilities::CopyAll(const Yr::Ref<Yr::IBinaryChannel>& input,
                                           const Yr::Ref<Yr::OBinaryChannel>& output,
                                           Yr::UInt32 bufferSize) {
    Yr::OBinaryChannel& target = Yr::RequireOutput(output, kSourceUnit, __LINE__);
    return CopyAll(Yr::RequireInput(input, kSourceUnit, __LINE__), target, bufferSize);
}

bool BinaryChannelUtilities::ContentEquals(Yr::IBinaryChannel& first, Yr::IBinaryChannel& second) {
    char firstBuffer[kCompareBufferSize];
    char secondBuffer[kCompareBufferSize];
    for (;;) {
        // Filled completely, so the blocks line up however each stream splits
        // its reads.
        const Yr::UInt32 firstCount =
            Yr::IBinaryChannelUtilities::ReadFully(first, firstBuffer, kCompareBufferSize);
        const Yr::UInt32 secondCount =
            Yr::IBinaryChannelUtilities::ReadFully(second, secondBuffer, kCompareBufferSize);
        if (firstCount != secondCount) return false;
        if (firstCount == 0) return true;
        if (std::memcmp(firstBuffer, secondBuffer, firstCount) != 0) return false;
    }
}

bool BinaryChannelUtilities::ContentEquals(const Yr::Ref<Yr::IBinaryChannel>& first,
                                           Yr::IBinaryChannel& second) {
    return ContentEquals(Yr::RequireInput(first, kSourceUnit, __LINE__), second);
}

bool BinaryChannelUtilities::ContentEquals(Yr::IBinaryChannel& first,
                                           const Yr::Ref<Yr::IBinaryChannel>& second) {
    return ContentEquals(first, Yr::RequireInput(second, kSourceUnit, __LINE__));
}

bool BinaryChannelUtilities::ContentEquals(const Yr::Ref<Yr::IBinaryChannel>& first,
                                           const Yr::Ref<Yr::IBinaryChannel>& second) {
    Yr::IBinaryChannel& firstChannel = Yr::RequireInput(first, kSourceUnit, __LINE__);
    return ContentEquals(firstChannel, Yr::RequireInput(second, kSourceUnit, __LINE__));
}

Yr::UInt64 BinaryChannelUtilities::Skip(Yr::IBinaryChannel& input, Yr::UInt64 count) {
    if (count == 0) return 0;
    char scratch[kScratchSize];
    Yr::UInt64 skipped = 0;
    while (skipped < count) {
        const auto wanted =
            static_cast<Yr::UInt32>(std::min<Yr::UInt64>(kScratchSize, count - skipped));
        const Yr::UInt32 read = input.Read(scratch, wanted, Yr::kReadSome);
        if (read == 0) break;
        skipped += read;
    }
    return skipped;
}

Yr::UInt64 BinaryChannelUtilities::Skip(const Yr::Ref<Yr::IBinaryChannel>& input,
                                        Yr::UInt64 count) {
    return Skip(Yr::RequireInput(input, kSourceUnit, __LINE__), count);
}

void BinaryChannelUtilities::FillWithZeros(Yr::OBinaryChannel& output, Yr::UInt64 count) {
    const char zeros[kScratchSize] = {};
    while (count > 0) {
        const auto size = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(kScratchSize, count));
        output.Write(zeros, size);
        count -= size;
    }
}

void BinaryChannelUtilities::FillWithZeros(const Yr::Ref<Yr::OBinaryChannel>& output,
                                           Yr::UInt64 count) {
    FillWithZeros(Yr::RequireOutput(output, kSourceUnit, __LINE__), count);
}

}  // namespace Morvelan::Common::IO
