#include "Common/IO/CRC32IBinaryChannel.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/CRC32IBinaryChannel";
}

CRC32IBinaryChannel::CRC32IBinaryChannel(Yr::IBinaryChannel& inner) : m_inner(inner) {}

CRC32IBinaryChannel::CRC32IBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : m_innerRef(inner), m_inner(Yr::RequireInput(inner, kSourceUnit, __LINE__)) {}

CRC32IBinaryChannel::~CRC32IBinaryChannel() = default;

Yr::UInt32 CRC32IBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    const Yr::UInt32 count = m_inner.Read(buffer, size, Yr::kReadSome);
    // Only the bytes returned: the rest of the buffer is not data.
    m_crc.Update(buffer, count);
    return count;
}

Yr::UInt64 CRC32IBinaryChannel::GetAvailable() const {
    return m_inner.GetAvailable();
}

void CRC32IBinaryChannel::Close() {
    m_inner.Close();
}

}  // namespace Morvelan::Common::IO
