#include "Yr/OProtocol.h"

#include "Yr/Object.h"

namespace Yr {

YrErrCode OProtocol::Write(OChannel& channel, const Object& value) {
    return value.Write(channel, *this);
}

}  // namespace Yr
