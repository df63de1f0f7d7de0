#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/IChannel.h"
#include "Yr/IChannelX.h"
#include "Yr/UniString.h"

// Reading strings in the layout of Java's data streams: an unsigned 16-bit
// big-endian byte count, then that many bytes of standard UTF-8 (not Java's
// modified form: U+0000 is one zero byte and characters beyond U+FFFF are
// four-byte sequences). Bytes that are not well-formed UTF-8 are refused
// with ConversionErrorException.
namespace Morvelan::Common::IO {

// Returns 0, the channel's status for a short stream, or Yr::kReadErrorCode
// when an exception of the base layer arose inside.
Yr::YrErrCode ReadUTF(Yr::IChannel& channel, Yr::UniString& result);

// A short stream throws Yr::EndOfInputException "End of input reached.".
void ReadUTF(Yr::IBinaryChannel& channel, Yr::UniString& result);
void ReadUTF(Yr::IChannelX& channel, Yr::UniString& result);
Yr::UniString ReadUTF(Yr::IChannelX& channel);

}  // namespace Morvelan::Common::IO
