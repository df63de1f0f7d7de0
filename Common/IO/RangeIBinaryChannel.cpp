#include "Common/IO/RangeIBinaryChannel.h"

#include <algorithm>
#include <limits>

#include "Yr/Exceptions.h"
#include "Yr/IBinaryChannelUtilities.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/RangeIBinaryChannel";
constexpr Yr::UInt64 kLargest = std::numeric_limits<Yr::UInt64>::max();

void CheckRange(Yr::UInt64 offset, Yr::UInt64 length) {
    if (length == 0 || length == kLargest)
        throw Yr::IllegalArgumentException("Invalid range: length is out of allowed range.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    if (offset == kLargest)
        throw Yr::IllegalArgumentException("Invalid range: offset is out of allowed range.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
}

}  // namespace

RangeIBinaryChannel::RangeIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt64 offset,
                                         Yr::UInt64 length)
    : FilterIBinaryChannel(inner), m_start(offset), m_end(offset + length) {
    CheckRange(offset, length);
}

RangeIBinaryChannel::RangeIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner,
                                         Yr::UInt64 offset, Yr::UInt64 length)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__), m_start(offset), m_end(offset + length) {
    CheckRange(offset, length);
}

RangeIBinaryChannel::~RangeIBinaryChannel() = default;

Yr::UInt32 RangeIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    CheckOpened(kSourceUnit, __LINE__);
    EnsurePrefixSkipped();
    // Still short of the start: the inner stream ended inside the prefix.
    if (m_position < m_start || m_position == m_end) return 0;
    const auto wanted = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(GetRemaining(), size));
    const Yr::UInt32 count = m_inner.Read(buffer, wanted, Yr::kReadSome);
    if (count == 0) return 0;
    m_position += count;
    return count;
}

Yr::UInt64 RangeIBinaryChannel::GetAvailable() const {
    CheckOpened(kSourceUnit, __LINE__);
    // Only m_position (mutable) changes, so this is sound on a const object too.
    const_cast<RangeIBinaryChannel*>(this)->EnsurePrefixSkipped();
    if (m_position < m_start || m_position == m_end) return 0;
    return std::min(m_inner.GetAvailable(), GetRemaining());
}

void RangeIBinaryChannel::Close() {
    if (m_closed) return;
    m_inner.Close();
    m_closed = true;
}

void RangeIBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Range input channel is closed.", sourceFile, line, Yr::kIOErrorCode);
}

void RangeIBinaryChannel::EnsurePrefixSkipped() {
    if (m_position < m_start)
        m_position += Yr::IBinaryChannelUtilities::Skip(m_inner, m_start - m_position);
}

Yr::UInt64 RangeIBinaryChannel::GetRemaining() const {
    return m_position < m_start ? 0 : m_end - m_position;
}

}  // namespace Morvelan::Common::IO
