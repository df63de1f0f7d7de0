#pragma once

#include "Yr/UniString.h"

namespace Yr {
class YrException;
}

namespace Morvelan::Common {

// Renders an exception and its chain of causes, outermost first, one block
// each: "\nException: Name: message\n\tat unit(line)", then a
// "\nCaused by: ..." block per cause. The text begins with a line break and
// has none at its end. Throws nothing of its own; only an allocation failure
// passes through.
Yr::UniString ToString(const Yr::YrException& exception);

// Writes ToString(exception) and a line break to the debug output.
void DebugPrintEx(const Yr::YrException& exception);

}  // namespace Morvelan::Common
