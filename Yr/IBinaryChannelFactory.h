#pragma once

#include "Yr/IBinaryChannel.h"

namespace Yr {

// Makes input channels; the caller owns each channel returned.
class IBinaryChannelFactory {
public:
    virtual ~IBinaryChannelFactory() = default;
    virtual IBinaryChannel* GetInputChannel() const = 0;

protected:
    IBinaryChannelFactory() = default;
    IBinaryChannelFactory(const IBinaryChannelFactory&) = default;
    IBinaryChannelFactory& operator=(const IBinaryChannelFactory&) = default;
};

}  // namespace Yr
