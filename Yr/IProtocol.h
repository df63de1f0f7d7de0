#pragma once

#include "Yr/Types.h"

namespace Yr {

class IChannel;
class Object;
class UniString;
struct Guid;

// Reads typed values from an error-code channel in one wire layout; each
// returns 0 or the failure's status, and on failure the value is
// unspecified. Protocols keep no state, so one instance serves any number of
// channels and threads.
class IProtocol {
public:
    virtual ~IProtocol() = default;

    virtual YrErrCode Read(IChannel& channel, char& value) = 0;
    virtual YrErrCode Read(IChannel& channel, bool& value) = 0;
    virtual YrErrCode Read(IChannel& channel, short& value) = 0;
    virtual YrErrCode Read(IChannel& channel, unsigned short& value) = 0;
    virtual YrErrCode Read(IChannel& channel, int& value) = 0;
    virtual YrErrCode Read(IChannel& channel, Int64& value) = 0;
    virtual YrErrCode Read(IChannel& channel, float& value) = 0;
    virtual YrErrCode Read(IChannel& channel, double& value) = 0;
    virtual YrErrCode Read(IChannel& channel, Guid& value) = 0;
    // A string into the caller's buffer, NUL-terminated, in the platform's
    // narrow character code. The caller makes the buffer large enough: there
    // is no size to check against.
    virtual YrErrCode Read(IChannel& channel, char* buffer) = 0;
    virtual YrErrCode Read(IChannel& channel, UniString& value) = 0;
    // Any other value reads itself; UniString is not an Object here, so its
    // overload above is the one strings take.
    virtual YrErrCode Read(IChannel& channel, Object& value);

protected:
    IProtocol() = default;
    IProtocol(const IProtocol&) = default;
    IProtocol& operator=(const IProtocol&) = default;
};

}  // namespace Yr
