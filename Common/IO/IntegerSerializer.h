#pragma once

#include "Yr/IChannelX.h"
#include "Yr/OChannelX.h"

namespace Morvelan::Common::IO {

// Unsigned integers in 1 to 10 bytes (unsigned LEB128): seven value bits a
// byte, least significant first, the high bit set while more bytes follow.
// Counts and lengths, usually small, take one byte. The bytes are the wire
// form whatever the extended channel's protocol: they go straight to its
// binary channel, whose errors pass through, and a stream that ends inside a
// number throws Yr::EndOfInputException. Reading takes one byte at a time,
// never more than the number's own, accepts non-minimal forms and checks
// only the value's range.
class IntegerSerializer {
public:
    static void Write(Yr::OChannelX& channel, unsigned long long value);
    static void Write(Yr::OChannelX& channel, unsigned int value);

    // A value beyond 64 bits, or beyond 32 bits for the narrow read, throws
    // IntegerSerializerException "Invalid input: represented number is too
    // large.".
    static void Read(Yr::IChannelX& channel, unsigned long long& value);
    static void Read(Yr::IChannelX& channel, unsigned int& value);
};

}  // namespace Morvelan::Common::IO
