#include "Common/IO/ZipEntry.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

ZipEntry::ZipEntry(const Yr::UniString& name) : m_name(name) {
    if (name.IsEmpty())
        throw Yr::IllegalArgumentException("Invalid entry name: name is empty.",
                                           "Common/IO/ZipEntry", __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
}

bool ZipEntry::IsDirectory() const {
    const std::string& utf8 = m_name.ToUtf8();
    return utf8.back() == '/';
}

}  // namespace Morvelan::Common::IO
