#include "Common/IO/NullIBinaryChannelFactory.h"

#include "Common/IO/NullIBinaryChannel.h"

namespace Morvelan::Common::IO {

NullIBinaryChannelFactory::~NullIBinaryChannelFactory() = default;

Yr::IBinaryChannel* NullIBinaryChannelFactory::GetInputChannel() const {
    return new NullIBinaryChannel();
}

}  // namespace Morvelan::Common::IO
