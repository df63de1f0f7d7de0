// Decodes the input as Base64 text, whole and as the tool streams it, in the
// alphabet byte 0 chooses. Bad text may only be refused with
// Yr::YrException; text both forms accept must decode alike, and what was
// decoded must come back through an encode and a decode.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Common/Base64.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryManager.h"
#include "Yr/MemoryOBinaryChannel.h"
#include "Yr/YrException.h"
#include "cli/Base64Streams.h"

namespace {

using Morvelan::Common::Base64;

// The bytes, unless the text was refused.
struct Decoded {
    bool accepted;
    std::string bytes;
};

Decoded DecodeWhole(const char* text, Yr::UInt32 size, bool urlSafe) {
    char* target = nullptr;
    Yr::UInt32 targetSize = 0;
    try {
        if (urlSafe)
            Base64::DecodeUrlSafe(text, size, &target, &targetSize);
        else
            Base64::Decode(text, size, &target, &targetSize);
    } catch (const Yr::YrException&) {
        return {false, {}};
    }
    Decoded decoded{true, std::string(target, targetSize)};
    Yr::MemoryManager::Free(target);
    return decoded;
}

Decoded DecodeStreamed(const char* text, Yr::UInt32 size, bool urlSafe) {
    Yr::MemoryIBinaryChannel input(text, size);
    Yr::MemoryOBinaryChannel output;
    try {
        Morvelan::Tool::DecodeBase64Stream(input, output, urlSafe);
    } catch (const Yr::YrException&) {
        return {false, {}};
    }
    return {true, std::string(output.GetBuffer(), output.GetSize())};
}

void CheckRoundTrip(const std::string& bytes, bool urlSafe) {
    const auto size = static_cast<Yr::UInt32>(bytes.size());
    std::string text(Base64::EncodedSize(size, urlSafe), '\0');
    const Yr::UInt32 length = Base64::EncodeInto(
        reinterpret_cast<const unsigned char*>(bytes.data()), size, text.data(), urlSafe);
    std::string back(Base64::DecodedCapacity(length), '\0');
    const Yr::UInt32 count = Base64::DecodeInto(
        text.data(), length, reinterpret_cast<unsigned char*>(back.data()), urlSafe);
    if (back.substr(0, count) != bytes) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const bool urlSafe = (data[0] & 1) != 0;
    const char* text = reinterpret_cast<const char*>(data + 1);
    const auto length = static_cast<Yr::UInt32>(size - 1);
    const Decoded whole = DecodeWhole(text, length, urlSafe);
    const Decoded streamed = DecodeStreamed(text, length, urlSafe);
    // The streamed form skips line breaks and refuses text after the
    // padding, which the whole form ignores; otherwise they agree.
    const bool oneLine =
        std::memchr(text, '\n', length) == nullptr && std::memchr(text, '\r', length) == nullptr;
    const bool padded = std::memchr(text, '=', length) != nullptr;
    if (oneLine && streamed.accepted && !(whole.accepted && whole.bytes == streamed.bytes))
        std::abort();
    if (oneLine && !padded && whole.accepted != streamed.accepted) std::abort();
    if (whole.accepted) CheckRoundTrip(whole.bytes, urlSafe);
    return 0;
}
