#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/IChannel.h"

// How the Java data protocols read the bytes of one value; shared by the
// protocols and the string readers.
namespace Morvelan::Common::IO::JavaDataReading {

// Error-code flavour: 0, or the status of a read that failed. A failure after
// part of the value arrived goes through Yr::IChannel::ConvertObjectReadError.
Yr::YrErrCode ReadExactly(Yr::IChannel& channel, char* buffer, Yr::UInt32 size);

// Exception flavour: a stream that ends early throws Yr::EndOfInputException
// "End of input reached." with the given origin.
void ReadExactly(Yr::IBinaryChannel& channel, char* buffer, Yr::UInt32 size, const char* sourceUnit,
                 Yr::UInt32 line);

}  // namespace Morvelan::Common::IO::JavaDataReading
