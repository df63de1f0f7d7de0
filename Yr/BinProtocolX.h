#pragma once

#include "Yr/IProtocolX.h"
#include "Yr/OProtocolX.h"

namespace Yr {

// The base layer's own compact layout: numbers little-endian in their natural
// width (float and double as their IEEE bits, long double written as a
// double), bool as one byte (0 or 1; only 1 reads as true), strings as a
// little-endian UInt32 byte count and that many bytes of UTF-8. Reading
// refuses counts above 64 MiB with IOException so that a hostile count
// cannot make it allocate without bound; writing refuses such strings with
// DataIntegrityException "String length exceeds limit.". A short stream
// throws EndOfInputException "End of input reached.".
//
// Process-wide instances, built on first use; stateless, so any thread may
// use them at once.
const IProtocolX& GetBinIProtocolX();
const OProtocolX& GetBinOProtocolX();

// Longest string, in UTF-8 bytes, that the protocol reads or writes.
inline constexpr UInt32 kBinProtocolXMaxStringBytes = 64u << 20;

}  // namespace Yr
