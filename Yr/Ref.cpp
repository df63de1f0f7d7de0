#include "Yr/Ref.h"

#include "Yr/Exceptions.h"

namespace Yr {

void ThrowNullReference(const char* sourceFile, UInt32 line) {
    throw NullReferenceException("Null reference.", sourceFile, line, kIllegalArgumentErrorCode);
}

}  // namespace Yr
