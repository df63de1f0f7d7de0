#include "Common/IO/ThresholdingOBinaryChannel.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/ThresholdingOBinaryChannel";

Yr::UInt64 CheckThresholdArgument(Yr::UInt64 threshold) {
    if (threshold == 0)
        throw Yr::IllegalArgumentException("Invalid threshold: threshold is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    return threshold;
}
}  // namespace

ThresholdingOBinaryChannel::ThresholdingOBinaryChannel(Yr::UInt64 threshold)
    : m_threshold(CheckThresholdArgument(threshold)) {}

ThresholdingOBinaryChannel::ThresholdingOBinaryChannel(const ThresholdingOBinaryChannel& other)
    : Yr::OBinaryChannel(),
      m_thresholdExceeded(other.m_thresholdExceeded),
      m_threshold(other.m_threshold),
      m_count(other.m_count),
      m_closed(other.m_closed) {}

ThresholdingOBinaryChannel& ThresholdingOBinaryChannel::operator=(
    const ThresholdingOBinaryChannel& other) {
    m_thresholdExceeded = other.m_thresholdExceeded;
    m_threshold = other.m_threshold;
    m_count = other.m_count;
    m_closed = other.m_closed;
    return *this;
}

ThresholdingOBinaryChannel::~ThresholdingOBinaryChannel() = default;

void ThresholdingOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    CheckOpened(kSourceUnit, __LINE__);
    CheckThreshold(size);
    GetOutputChannel().Write(buffer, size);
    m_count += size;
}

void ThresholdingOBinaryChannel::Flush() {
    CheckOpened(kSourceUnit, __LINE__);
    GetOutputChannel().Flush();
}

void ThresholdingOBinaryChannel::Close() {
    GetOutputChannel().Close();
    m_closed = true;
}

void ThresholdingOBinaryChannel::CheckThreshold(Yr::UInt64 count) {
    if (m_thresholdExceeded || m_count + count <= m_threshold) return;
    // Marked first: whatever ThresholdReached does, it is called only once.
    m_thresholdExceeded = true;
    ThresholdReached();
}

void ThresholdingOBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Thresholding binary output channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

}  // namespace Morvelan::Common::IO
