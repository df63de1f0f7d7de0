#include "Common/IO/NullOBinaryChannelFactory.h"

#include "Common/IO/NullOBinaryChannel.h"

namespace Morvelan::Common::IO {

NullOBinaryChannelFactory::~NullOBinaryChannelFactory() = default;

Yr::OBinaryChannel* NullOBinaryChannelFactory::GetOutputChannel() {
    return new NullOBinaryChannel();
}

}  // namespace Morvelan::Common::IO
