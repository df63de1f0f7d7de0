#include "Common/IO/CountingOBinaryChannel.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CountingOBinaryChannel";
}

CountingOBinaryChannel::CountingOBinaryChannel(Yr::OBinaryChannel& inner) : m_inner(inner) {}

CountingOBinaryChannel::CountingOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner)
    : m_innerRef(inner), m_inner(Yr::RequireOutput(inner, kSourceUnit, __LINE__)) {}

CountingOBinaryChannel::~CountingOBinaryChannel() = default;

void CountingOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    // Counted only once the inner channel took the bytes.
    m_inner.Write(buffer, size);
    m_count += size;
}

void CountingOBinaryChannel::Flush() {
    m_inner.Flush();
}

void CountingOBinaryChannel::Close() {
    m_inner.Close();
}

}  // namespace Morvelan::Common::IO
