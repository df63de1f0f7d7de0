#include "Common/ExtensionRegistrator.h"

namespace Morvelan::Common {

ExtensionRegistrator::~ExtensionRegistrator() = default;

}  // namespace Morvelan::Common
