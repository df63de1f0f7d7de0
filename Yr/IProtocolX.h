#pragma once

#include "Yr/Types.h"

namespace Yr {

class IBinaryChannel;
class UniString;
struct Guid;

// Reads typed values from a binary channel in one wire layout; each derived
// protocol fixes the layout. Protocols keep no state per channel, so one
// instance may serve any number of channels and threads at once. A stream
// that ends inside a value throws EndOfInputException; the value is then
// unspecified.
class IProtocolX {
public:
    virtual ~IProtocolX() = default;

    virtual void Read(IBinaryChannel& channel, char& value) const = 0;
    virtual void Read(IBinaryChannel& channel, bool& value) const = 0;
    virtual void Read(IBinaryChannel& channel, short& value) const = 0;
    virtual void Read(IBinaryChannel& channel, unsigned short& value) const = 0;
    virtual void Read(IBinaryChannel& channel, int& value) const = 0;
    virtual void Read(IBinaryChannel& channel, Int64& value) const = 0;
    virtual void Read(IBinaryChannel& channel, float& value) const = 0;
    virtual void Read(IBinaryChannel& channel, double& value) const = 0;
    // The first field through this protocol's int, the next two through its
    // unsigned short, then the 8 bytes as they come.
    virtual void Read(IBinaryChannel& channel, Guid& value) const;
    virtual void Read(IBinaryChannel& channel, UniString& value) const = 0;
    // The unsigned twins read the bits of the signed value of their width.
    virtual void Read(IBinaryChannel& channel, unsigned char& value) const;
    virtual void Read(IBinaryChannel& channel, unsigned int& value) const;
    virtual void Read(IBinaryChannel& channel, UInt64& value) const;

protected:
    IProtocolX() = default;
    IProtocolX(const IProtocolX&) = default;
    IProtocolX& operator=(const IProtocolX&) = default;
};

}  // namespace Yr
