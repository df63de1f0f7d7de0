// Reads the input as a QuickLZ packet stream. Damaged streams may only be
// refused with an exception of the library's family.
#include <cstddef>
#include <cstdint>

#include "Common/IO/QlzIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/YrException.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0x7FFFFFFF) return 0;
    Yr::MemoryIBinaryChannel source(reinterpret_cast<const char*>(data),
                                    static_cast<Yr::UInt32>(size));
    Morvelan::Common::IO::QlzIBinaryChannel channel(source);
    static char buffer[65536];
    try {
        // Odd read sizes, so packets are handed out across several reads.
        while (channel.Read(buffer, 4093, Yr::kReadSome) > 0) {
        }
    } catch (const Yr::YrException&) {
    }
    return 0;
}
