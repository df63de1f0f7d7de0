#pragma once

#include "Yr/IBinaryChannel.h"
#include "Yr/OBinaryChannel.h"

// Base64 over whole streams, a piece at a time, as `morvelan base64` runs it.
namespace Morvelan::Tool {

// Writes `input` as Base64 text with a line break after every `columns`
// characters and after the last line; 0 writes one line without a break.
void EncodeBase64Stream(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output, bool urlSafe,
                        Yr::UInt32 columns);

// Writes the bytes of the Base64 text in `input`, skipping line breaks. Text
// after a padded group is refused with Yr::IllegalArgumentException.
void DecodeBase64Stream(Yr::IBinaryChannel& input, Yr::OBinaryChannel& output, bool urlSafe);

}  // namespace Morvelan::Tool
