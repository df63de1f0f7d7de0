#include "Common/IO/CRC32OBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CRC32OBinaryChannel";
}

CRC32OBinaryChannel::CRC32OBinaryChannel(Yr::OBinaryChannel& inner) : FilterOBinaryChannel(inner) {}

CRC32OBinaryChannel::CRC32OBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner)
    : FilterOBinaryChannel(inner, kSourceUnit, __LINE__) {}

CRC32OBinaryChannel::~CRC32OBinaryChannel() = default;

void CRC32OBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    // Checksummed after the write, so a failed write leaves the value as it was.
    m_inner.Write(buffer, size);
    m_crc.Update(buffer, size);
}

}  // namespace Morvelan::Common::IO
