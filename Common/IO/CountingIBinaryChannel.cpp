#include "Common/IO/CountingIBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CountingIBinaryChannel";
}

CountingIBinaryChannel::CountingIBinaryChannel(Yr::IBinaryChannel& inner)
    : FilterIBinaryChannel(inner) {}

CountingIBinaryChannel::CountingIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__) {}

CountingIBinaryChannel::~CountingIBinaryChannel() = default;

Yr::UInt32 CountingIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    // Arguments are the inner channel's to judge; a throw there counts nothing.
    const Yr::UInt32 count = m_inner.Read(buffer, size, Yr::kReadSome);
    m_count += count;
    return count;
}

}  // namespace Morvelan::Common::IO
