#include "Common/IO/CRC32IBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CRC32IBinaryChannel";
}

CRC32IBinaryChannel::CRC32IBinaryChannel(Yr::IBinaryChannel& inner) : FilterIBinaryChannel(inner) {}

CRC32IBinaryChannel::CRC32IBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__) {}

CRC32IBinaryChannel::~CRC32IBinaryChannel() = default;

Yr::UInt32 CRC32IBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    const Yr::UInt32 count = m_inner.Read(buffer, size, Yr::kReadSome);
    // Only the bytes returned: the rest of the buffer is not data.
    m_crc.Update(buffer, count);
    return count;
}

}  // namespace Morvelan::Common::IO
