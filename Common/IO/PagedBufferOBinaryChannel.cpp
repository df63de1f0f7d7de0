#include "Common/IO/PagedBufferOBinaryChannel.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/PagedBufferOBinaryChannel";
}

PagedBufferOBinaryChannel::PagedBufferOBinaryChannel() = default;

PagedBufferOBinaryChannel::~PagedBufferOBinaryChannel() = default;

void PagedBufferOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid buffer: buffer is null.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid buffer size: buffer size is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    CheckOpened(kSourceUnit, __LINE__);
    m_buffer.Write(m_buffer.GetSize(), buffer, size);
}

void PagedBufferOBinaryChannel::Flush() {
    CheckOpened(kSourceUnit, __LINE__);
}

void PagedBufferOBinaryChannel::Close() {
    m_closed = true;
}

void PagedBufferOBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Paged buffer binary output channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
