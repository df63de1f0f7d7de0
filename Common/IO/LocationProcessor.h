#pragma once

#include "InputOutput/Location.h"

namespace Morvelan::Common::IO {

// Receives each entry an enumeration delivers.
class LocationProcessor {
public:
    virtual ~LocationProcessor() = default;

    virtual void Process(const ::IO::Location& location) = 0;
};

}  // namespace Morvelan::Common::IO
