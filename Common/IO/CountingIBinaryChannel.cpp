#include "Common/IO/CountingIBinaryChannel.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CountingIBinaryChannel";
}

CountingIBinaryChannel::CountingIBinaryChannel(Yr::IBinaryChannel& inner) : m_inner(inner) {}

CountingIBinaryChannel::CountingIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : m_innerRef(inner), m_inner(Yr::RequireInput(inner, kSourceUnit, __LINE__)) {}

CountingIBinaryChannel::~CountingIBinaryChannel() = default;

Yr::UInt32 CountingIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    // Arguments are the inner channel's to judge; a throw there counts nothing.
    const Yr::UInt32 count = m_inner.Read(buffer, size, Yr::kReadSome);
    m_count += count;
    return count;
}

Yr::UInt64 CountingIBinaryChannel::GetAvailable() const {
    return m_inner.GetAvailable();
}

void CountingIBinaryChannel::Close() {
    m_inner.Close();
}

}  // namespace Morvelan::Common::IO
