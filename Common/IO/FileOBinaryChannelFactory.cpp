#include "Common/IO/FileOBinaryChannelFactory.h"

#include "Common/IO/FileOBinaryChannel.h"

namespace Morvelan::Common::IO {

FileOBinaryChannelFactory::FileOBinaryChannelFactory(const ::IO::Location& location, bool append,
                                                     FileShare share)
    : m_location(location), m_append(append), m_share(share) {}

FileOBinaryChannelFactory::~FileOBinaryChannelFactory() = default;

Yr::OBinaryChannel* FileOBinaryChannelFactory::GetOutputChannel() {
    return new FileOBinaryChannel(m_location, m_append, m_share);
}

}  // namespace Morvelan::Common::IO
