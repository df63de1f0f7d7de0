#pragma once

#include "Yr/Types.h"

namespace Yr {

class IChannel;
class OChannel;
class IProtocol;
class OProtocol;

// A value that reads and writes itself through an error-code protocol, so a
// protocol can carry types it does not know. Each returns 0 or the status of
// the first failing call.
class Object {
public:
    virtual ~Object() = default;

    virtual YrErrCode Read(IChannel& channel, IProtocol& protocol) = 0;
    virtual YrErrCode Write(OChannel& channel, OProtocol& protocol) const = 0;

protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

}  // namespace Yr
