#include "Common/IO/FileIBinaryChannelFactory.h"

#include "Common/IO/FileIBinaryChannel.h"

namespace Morvelan::Common::IO {

FileIBinaryChannelFactory::FileIBinaryChannelFactory(const ::IO::Location& location,
                                                     FileShare share)
    : m_location(location), m_share(share) {}

FileIBinaryChannelFactory::~FileIBinaryChannelFactory() = default;

Yr::IBinaryChannel* FileIBinaryChannelFactory::GetInputChannel() const {
    return new FileIBinaryChannel(m_location, m_share);
}

}  // namespace Morvelan::Common::IO
