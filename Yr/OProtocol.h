#pragma once

#include "Yr/Types.h"

namespace Yr {

class OChannel;
class Object;
class UniString;
struct Guid;

// Writes typed values to an error-code channel in one wire layout, the twin
// of IProtocol; each returns 0 or the channel's failure status.
class OProtocol {
public:
    virtual ~OProtocol() = default;

    virtual YrErrCode Write(OChannel& channel, char value) = 0;
    virtual YrErrCode Write(OChannel& channel, bool value) = 0;
    virtual YrErrCode Write(OChannel& channel, short value) = 0;
    virtual YrErrCode Write(OChannel& channel, unsigned short value) = 0;
    virtual YrErrCode Write(OChannel& channel, int value) = 0;
    virtual YrErrCode Write(OChannel& channel, Int64 value) = 0;
    virtual YrErrCode Write(OChannel& channel, float value) = 0;
    virtual YrErrCode Write(OChannel& channel, double value) = 0;
    virtual YrErrCode Write(OChannel& channel, long double value) = 0;
    virtual YrErrCode Write(OChannel& channel, const Guid& value) = 0;
    // A NUL-terminated string in the platform's narrow character code; the
    // layout of strings is the protocol's.
    virtual YrErrCode Write(OChannel& channel, const char* text) = 0;
    virtual YrErrCode Write(OChannel& channel, const UniString& text) = 0;
    // Any other value writes itself, as IProtocol reads it.
    virtual YrErrCode Write(OChannel& channel, const Object& value);

protected:
    OProtocol() = default;
    OProtocol(const OProtocol&) = default;
    OProtocol& operator=(const OProtocol&) = default;
};

}  // namespace Yr
