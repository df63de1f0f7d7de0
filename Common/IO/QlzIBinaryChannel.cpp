#include "Common/IO/QlzIBinaryChannel.h"

#include "Common/IO/QlzIBinaryChannelImpl.h"

namespace Morvelan::Common::IO {

QlzIBinaryChannel::QlzIBinaryChannel(Yr::IBinaryChannel& inner)
    : m_impl(std::make_unique<QlzIBinaryChannelImpl>(inner)) {}

QlzIBinaryChannel::QlzIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : m_impl(std::make_unique<QlzIBinaryChannelImpl>(inner)) {}

QlzIBinaryChannel::~QlzIBinaryChannel() = default;

Yr::UInt32 QlzIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    return m_impl->Read(buffer, size, Yr::kReadSome);
}

Yr::UInt64 QlzIBinaryChannel::GetAvailable() const {
    return m_impl->GetAvailable();
}

void QlzIBinaryChannel::Close() {
    m_impl->Close();
}

}  // namespace Morvelan::Common::IO
