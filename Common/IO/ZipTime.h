#pragma once

#include "Yr/Types.h"

namespace Morvelan::Common::IO {

// Entry times as ZIP keeps them: the MS-DOS date and time of the headers
// (local time, two-second steps, 1980 to 2107) and the UTC seconds of the
// extended-timestamp extra field.
class ZipTime {
public:
    ZipTime() = delete;

    // The DOS time in the low 16 bits and the date in the high 16 bits, in
    // local time; times before 1980 give 1980-01-01 00:00, after 2107 the
    // last representable second.
    static Yr::UInt32 ToDosDateTime(Yr::Int64 unixSeconds);
    // Local time back to UTC seconds; fields out of range (month 0, day 0,
    // hour 25, ...) are normalised the way mktime does.
    static Yr::Int64 FromDosDateTime(Yr::UInt32 dosDateTime);
};

}  // namespace Morvelan::Common::IO
