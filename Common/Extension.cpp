#include "Common/Extension.h"

namespace Morvelan::Common {

Extension::~Extension() = default;

}  // namespace Morvelan::Common
