#include "Common/IO/DeferredFileOBinaryChannel.h"

#include <limits>
#include <vector>

#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "Common/IO/LocationUtils.h"
#include "Common/IO/PagedBufferOBinaryChannel.h"
#include "Yr/BufferedIBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/DeferredFileOBinaryChannel";
// Transfers to and from the file go through buffers of one memory page.
constexpr Yr::UInt32 kFileBufferSize = 524288;
constexpr Yr::UInt32 kCopySize = 65536;
}  // namespace

DeferredFileOBinaryChannel::DeferredFileOBinaryChannel(const ::IO::Location& location,
                                                       Yr::UInt64 threshold)
    : ThresholdingOBinaryChannel(threshold), m_location(location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    if (threshold > std::numeric_limits<Yr::UInt32>::max())
        throw Yr::IllegalArgumentException(
            "Invalid threshold: threshold is larger than maximum supported size.", kSourceUnit,
            __LINE__, Yr::kIllegalArgumentErrorCode);
    m_output = std::make_unique<PagedBufferOBinaryChannel>();
}

DeferredFileOBinaryChannel::~DeferredFileOBinaryChannel() = default;

void DeferredFileOBinaryChannel::WriteTo(Yr::OBinaryChannel& output) const {
    if (!IsClosed())
        throw Yr::IOException("Deferred file binary output channel hasn't been closed yet.",
                              kSourceUnit, __LINE__, Yr::kIOErrorCode);
    // A switch that failed halfway leaves the memory channel, or the file
    // channel with the count not past the threshold: never misread either.
    const auto* memory = dynamic_cast<const PagedBufferOBinaryChannel*>(m_output.get());
    if (memory != nullptr && GetCount() <= GetThreshold()) {
        const PagedBuffer& buffer = memory->GetBuffer();
        buffer.WriteTo(output, 0, buffer.GetSize());
        return;
    }
    FileIBinaryChannel file(m_location, FileShare::Read);
    Yr::BufferedIBinaryChannel input(file, kFileBufferSize);
    std::vector<char> piece(kCopySize);
    for (;;) {
        const Yr::UInt32 count = input.Read(piece.data(), kCopySize, Yr::kReadSome);
        if (count == 0) break;
        output.Write(piece.data(), count);
    }
    input.Close();
}

Yr::OBinaryChannel& DeferredFileOBinaryChannel::GetOutputChannel() {
    return *m_output;
}

const Yr::OBinaryChannel& DeferredFileOBinaryChannel::GetOutputChannel() const {
    return *m_output;
}

void DeferredFileOBinaryChannel::ThresholdReached() {
    // Until the bytes are all in the file, the memory channel stays current.
    auto file = std::make_unique<FileOBinaryChannel>(m_location, false, FileShare::None);
    Yr::BufferedOBinaryChannel buffered(*file, kFileBufferSize);
    const PagedBuffer& buffer = static_cast<PagedBufferOBinaryChannel&>(*m_output).GetBuffer();
    buffer.WriteTo(buffered, 0, buffer.GetSize());
    buffered.Flush();
    m_output = std::move(file);
}

}  // namespace Morvelan::Common::IO
