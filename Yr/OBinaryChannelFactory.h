#pragma once

#include "Yr/OBinaryChannel.h"

namespace Yr {

// Makes output channels; the caller owns each channel returned.
class OBinaryChannelFactory {
public:
    virtual ~OBinaryChannelFactory() = default;
    virtual OBinaryChannel* GetOutputChannel() = 0;

protected:
    OBinaryChannelFactory() = default;
    OBinaryChannelFactory(const OBinaryChannelFactory&) = default;
    OBinaryChannelFactory& operator=(const OBinaryChannelFactory&) = default;
};

}  // namespace Yr
