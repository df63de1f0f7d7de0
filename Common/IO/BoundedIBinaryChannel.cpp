#include "Common/IO/BoundedIBinaryChannel.h"

#include <algorithm>

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/BoundedIBinaryChannel";
}

// A limit of 0 is allowed: it makes an empty stream.
BoundedIBinaryChannel::BoundedIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt64 limit)
    : FilterIBinaryChannel(inner), m_limit(limit) {}

BoundedIBinaryChannel::BoundedIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner,
                                             Yr::UInt64 limit)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__), m_limit(limit) {}

BoundedIBinaryChannel::~BoundedIBinaryChannel() = default;

Yr::UInt32 BoundedIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    const auto wanted = static_cast<Yr::UInt32>(std::min<Yr::UInt64>(size, m_limit - m_readSoFar));
    if (wanted == 0) return 0;
    const Yr::UInt32 count = m_inner.Read(buffer, wanted, Yr::kReadSome);
    m_readSoFar += count;
    return count;
}

Yr::UInt64 BoundedIBinaryChannel::GetAvailable() const {
    return std::min(m_inner.GetAvailable(), m_limit - m_readSoFar);
}

}  // namespace Morvelan::Common::IO
