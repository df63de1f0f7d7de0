// Reads the input as a chunk-framed sub-stream in the little-endian protocol.
// The first byte chooses the size of the reads, so that chunk boundaries meet
// reads of every length.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Yr/BinProtocolX.h"
#include "Yr/ChunkedIBinarySubChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/YrException.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > 0x7FFFFFFF) return 0;
    const Yr::UInt32 readSize = data[0] + 1u;
    Yr::MemoryIBinaryChannel in(reinterpret_cast<const char*>(data + 1),
                                static_cast<Yr::UInt32>(size - 1));
    Yr::ChunkedIBinarySubChannel reader(in, Yr::GetBinIProtocolX());
    char buffer[256];
    try {
        for (;;) {
            if (reader.GetAvailable() > in.GetAvailable()) std::abort();
            const Yr::UInt32 count = reader.Read(buffer, readSize, Yr::kReadSome);
            if (count > readSize) std::abort();
            if (count == 0) break;
        }
        // The end mark ends the sub-stream for good.
        if (reader.Read(buffer, readSize, Yr::kReadSome) != 0) std::abort();
    } catch (const Yr::YrException&) {
        // Malformed input is refused with an exception; that is the expected way out.
    }
    return 0;
}
