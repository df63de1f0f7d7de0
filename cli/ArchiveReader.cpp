#include "cli/ArchiveReader.h"

#include "Common/IO/ArchiveException.h"
#include "Common/ProgressMonitorIBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "cli/CancelableIBinaryChannel.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

// Records and trailers are read a few bytes at a time; the buffer turns
// that into large reads of the file or pipe.
constexpr Yr::UInt32 kInputBufferSize = 262144;
constexpr const char* kSourceUnit = "cli/ArchiveReader";

// A pipe has no size to tell.
Yr::UInt64 SizeIfKnown(const Yr::IBinaryChannel& input) {
    try {
        return input.GetAvailable();
    } catch (const Yr::YrException&) {
        return 0;
    }
}

std::unique_ptr<Yr::IBinaryChannel> CancelableOrNull(Yr::IBinaryChannel& input,
                                                     const Common::ProgressMonitor* monitor) {
    if (monitor == nullptr) return nullptr;
    return std::make_unique<CancelableIBinaryChannel>(input, *monitor);
}

std::unique_ptr<Yr::IBinaryChannel> MonitoredOrNull(Yr::IBinaryChannel* input,
                                                    Common::ProgressMonitor* monitor) {
    if (monitor == nullptr) return nullptr;
    return std::make_unique<Common::ProgressMonitorIBinaryChannel>(*input, *monitor);
}

}  // namespace

ArchiveReader::ArchiveReader(const std::string& argument, Common::ProgressMonitor* monitor)
    : m_input(OpenInput(argument)),
      m_size(SizeIfKnown(*m_input)),
      m_cancelable(CancelableOrNull(*m_input, monitor)),
      m_monitored(MonitoredOrNull(m_cancelable.get(), monitor)),
      m_buffered(m_monitored ? *m_monitored : *m_input, kInputBufferSize),
      m_archive(m_buffered) {}

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
