#include "Yr/IProtocol.h"

#include "Yr/Object.h"

namespace Yr {

YrErrCode IProtocol::Read(IChannel& channel, Object& value) {
    return value.Read(channel, *this);
}

}  // namespace Yr
