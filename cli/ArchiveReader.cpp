#include "cli/ArchiveReader.h"

#include "Common/IO/ArchiveException.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

constexpr const char* kSourceUnit = "cli/ArchiveReader";

}  // namespace

ArchiveReader::ArchiveReader(const std::string& argument, Common::ProgressMonitor* monitor)
    : m_input(argument, monitor), m_archive(m_input.GetChannel()) {}

void ArchiveReader::ForEach(const Visitor& visit) {
    Yr::UniString previous;
    while (const Yr::Ref<Common::IO::ArchiveEntry> entry = NextEntry(previous)) {
        try {
            const bool goOn = visit(*entry);
            Leave();
            if (!goOn) return;
        } catch (const Yr::YrException& failure) {
            throw Common::IO::ArchiveException(
                Yr::UniString::Printf("entry '%T':", entry->GetName()), kSourceUnit, __LINE__,
                failure, Yr::kIOErrorCode);
        }
        previous = entry->GetName();
    }
}

// The bare "End of input reached." of a short file says too little.
Yr::Ref<Common::IO::ArchiveEntry> ArchiveReader::NextEntry(const Yr::UniString& previous) {
    try {
        return m_archive.GetNextEntry();
    } catch (const Yr::EndOfInputException& failure) {
        const Yr::UniString where =
            previous.IsEmpty()
                ? Yr::UniString("The archive is cut short.")
                : Yr::UniString::Printf("The archive is cut short after entry '%T'.", previous);
        throw Common::IO::ArchiveException(where, kSourceUnit, __LINE__, failure, Yr::kIOErrorCode);
    }
}

}  // namespace Morvelan::Tool
