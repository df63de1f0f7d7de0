#pragma once

#include <bit>
#include <variant>

#include "Yr/Guid.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Testing {

// One value of any type the Java data protocols carry.
using JavaDataValue = std::variant<char, bool, short, unsigned short, int, Yr::Int64, float,
                                   double, Yr::Guid, Yr::UniString>;

// Floats and doubles compare by their bits, so NaN payloads and -0.0 count.
inline bool SameValue(const JavaDataValue& a, const JavaDataValue& b) {
    if (a.index() != b.index()) return false;
    if (const auto* f = std::get_if<float>(&a))
        return std::bit_cast<Yr::UInt32>(*f) == std::bit_cast<Yr::UInt32>(std::get<float>(b));
    if (const auto* d = std::get_if<double>(&a))
        return std::bit_cast<Yr::UInt64>(*d) == std::bit_cast<Yr::UInt64>(std::get<double>(b));
    return a == b;
}

}  // namespace Morvelan::Testing
