#pragma once

#include "Yr/IBinaryChannelFactory.h"

namespace Morvelan::Common::IO {

// Makes NullIBinaryChannels; stateless, so freely copied.
class NullIBinaryChannelFactory final : public Yr::IBinaryChannelFactory {
public:
    NullIBinaryChannelFactory() = default;
    NullIBinaryChannelFactory(const NullIBinaryChannelFactory&) = default;
    NullIBinaryChannelFactory(NullIBinaryChannelFactory&&) = default;
    NullIBinaryChannelFactory& operator=(const NullIBinaryChannelFactory&) = default;
    NullIBinaryChannelFactory& operator=(NullIBinaryChannelFactory&&) = default;
    ~NullIBinaryChannelFactory() override;

    // A new NullIBinaryChannel; the caller owns it.
    Yr::IBinaryChannel* GetInputChannel() const override;
};

}  // namespace Morvelan::Common::IO
