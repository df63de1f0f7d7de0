#pragma once

#include "Yr/OBinaryChannelFactory.h"

namespace Morvelan::Common::IO {

// Makes NullOBinaryChannels; stateless, so freely copied.
class NullOBinaryChannelFactory final : public Yr::OBinaryChannelFactory {
public:
    NullOBinaryChannelFactory() = default;
    NullOBinaryChannelFactory(const NullOBinaryChannelFactory&) = default;
    NullOBinaryChannelFactory(NullOBinaryChannelFactory&&) = default;
    NullOBinaryChannelFactory& operator=(const NullOBinaryChannelFactory&) = default;
    NullOBinaryChannelFactory& operator=(NullOBinaryChannelFactory&&) = default;
    ~NullOBinaryChannelFactory() override;

    // A new NullOBinaryChannel; the caller owns it.
    Yr::OBinaryChannel* GetOutputChannel() override;
};

}  // namespace Morvelan::Common::IO
