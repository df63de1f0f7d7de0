#include "Common/IO/CRC32OBinaryChannel.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CRC32OBinaryChannel";
}

CRC32OBinaryChannel::CRC32OBinaryChannel(Yr::OBinaryChannel& inner) : m_inner(inner) {}

CRC32OBinaryChannel::CRC32OBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner)
    : m_innerRef(inner), m_inner(Yr::RequireOutput(inner, kSourceUnit, __LINE__)) {}

CRC32OBinaryChannel::~CRC32OBinaryChannel() = default;

void CRC32OBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    // Checksummed after the write, so a failed write leaves the value as it was.
    m_inner.Write(buffer, size);
    m_crc.Update(buffer, size);
}

void CRC32OBinaryChannel::Flush() {
    m_inner.Flush();
}

void CRC32OBinaryChannel::Close() {
    m_inner.Close();
}

}  // namespace Morvelan::Common::IO
