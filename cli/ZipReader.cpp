#include "cli/ZipReader.h"

#include "Common/IO/ZipException.h"
#include "Yr/ErrorCodes.h"

namespace Morvelan::Tool {

ZipReader::ZipReader(const std::string& argument, Common::ProgressMonitor* monitor)
    : m_input(argument, monitor), m_zip(m_input.GetChannel()) {}

void ZipReader::ForEach(const Visitor& visit) {
    while (const Yr::Ref<Common::IO::ZipEntry> entry = m_zip.GetNextEntry()) {
        try {
            const bool goOn = visit(*entry);
            Leave();
            if (!goOn) return;
        } catch (const Yr::YrException& failure) {
            throw Common::IO::ZipException(Yr::UniString::Printf("entry '%T':", entry->GetName()),
                                           "cli/ZipReader", __LINE__, failure, Yr::kIOErrorCode);
        }
    }
}

}  // namespace Morvelan::Tool
