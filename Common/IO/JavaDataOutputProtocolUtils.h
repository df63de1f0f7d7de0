#pragma once

#include "Yr/OBinaryChannel.h"
#include "Yr/OChannel.h"
#include "Yr/OChannelX.h"
#include "Yr/UniString.h"

// Writing strings in the layout of Java's data streams (see
// JavaDataInputProtocolUtils.h). The text ends at its first U+0000, and its
// UTF-8 form may take at most 65535 bytes; a longer one writes nothing.
namespace Morvelan::Common::IO {

inline constexpr Yr::UInt32 kMaxUTFByteCount = 65535;

// Returns 0, the channel's status, or Yr::kWriteErrorCode for a string too
// long or an exception of the base layer from the channel.
Yr::YrErrCode WriteUTF(Yr::OChannel& channel, const Yr::UniString& text);

// A string too long throws Yr::DataIntegrityException "String length exceeds
// limit."; channel exceptions pass through.
void WriteUTF(Yr::OBinaryChannel& channel, const Yr::UniString& text);
void WriteUTF(Yr::OChannelX& channel, const Yr::UniString& text);

}  // namespace Morvelan::Common::IO
