#pragma once

#include "Yr/Types.h"

namespace Yr {

class OBinaryChannel;
class UniString;
struct Guid;

// Writes typed values to a binary channel in one wire layout, the twin of
// IProtocolX. Stateless like it; failures of the channel pass through.
class OProtocolX {
public:
    virtual ~OProtocolX() = default;

    virtual void Write(OBinaryChannel& channel, char value) const = 0;
    virtual void Write(OBinaryChannel& channel, bool value) const = 0;
    virtual void Write(OBinaryChannel& channel, short value) const = 0;
    virtual void Write(OBinaryChannel& channel, unsigned short value) const = 0;
    virtual void Write(OBinaryChannel& channel, int value) const = 0;
    virtual void Write(OBinaryChannel& channel, Int64 value) const = 0;
    virtual void Write(OBinaryChannel& channel, float value) const = 0;
    virtual void Write(OBinaryChannel& channel, double value) const = 0;
    virtual void Write(OBinaryChannel& channel, long double value) const = 0;
    // The first field through this protocol's int, the next two through its
    // unsigned short, then the 8 bytes as they are.
    virtual void Write(OBinaryChannel& channel, const Guid& value) const;
    virtual void Write(OBinaryChannel& channel, const UniString& value) const = 0;
    // The unsigned twins write their bits as the signed value of their width.
    virtual void Write(OBinaryChannel& channel, unsigned char value) const;
    virtual void Write(OBinaryChannel& channel, unsigned int value) const;
    virtual void Write(OBinaryChannel& channel, UInt64 value) const;
    // A literal would otherwise be taken silently as a bool.
    void Write(OBinaryChannel& channel, const char* value) const = delete;

protected:
    OProtocolX() = default;
    OProtocolX(const OProtocolX&) = default;
    OProtocolX& operator=(const OProtocolX&) = default;
};

}  // namespace Yr
