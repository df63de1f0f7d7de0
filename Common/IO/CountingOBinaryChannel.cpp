#include "Common/IO/CountingOBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CountingOBinaryChannel";
}

CountingOBinaryChannel::CountingOBinaryChannel(Yr::OBinaryChannel& inner)
    : FilterOBinaryChannel(inner) {}

CountingOBinaryChannel::CountingOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner)
    : FilterOBinaryChannel(inner, kSourceUnit, __LINE__) {}

CountingOBinaryChannel::~CountingOBinaryChannel() = default;

void CountingOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    // Counted only once the inner channel took the bytes.
    m_inner.Write(buffer, size);
    m_count += size;
}

}  // namespace Morvelan::Common::IO
