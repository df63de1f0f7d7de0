#include "Common/IO/ArchiveEntry.h"

namespace Morvelan::Common::IO {

ArchiveEntry::~ArchiveEntry() = default;

Yr::UniString ArchiveEntry::GetHeader(const Yr::UniString& name) const {
    Yr::UniString value;
    GetHeader(name, value);
    return value;
}

}  // namespace Morvelan::Common::IO
