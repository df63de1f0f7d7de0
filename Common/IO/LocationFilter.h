#pragma once

#include "InputOutput/Location.h"

namespace Morvelan::Common::IO {

// Decides which entries an enumeration delivers.
class LocationFilter {
public:
    virtual ~LocationFilter() = default;

    virtual bool Accept(const ::IO::Location& location) = 0;
};

}  // namespace Morvelan::Common::IO
