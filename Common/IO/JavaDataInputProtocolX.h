#pragma once

#include "Yr/IProtocolX.h"

namespace Morvelan::Common::IO {

// Reads the layout of Java's DataOutputStream from binary channels, throwing
// Yr::EndOfInputException "End of input reached." when the stream ends
// inside a value. With a standard GUID layout a GUID is read as its fields in
// reading order; the optimized layout takes its 16 bytes as they are in
// memory, which only a writer on a machine of the same byte order produces.
// Immutable: any number of threads may share one.
class JavaDataInputProtocolX : public Yr::IProtocolX {
public:
    explicit JavaDataInputProtocolX(bool standardGuid);

    // The standard layout, and the optimized one.
    static const JavaDataInputProtocolX& GetInstance();
    static const JavaDataInputProtocolX& GetOptimizedInstance();

    using Yr::IProtocolX::Read;
    void Read(Yr::IBinaryChannel& channel, char& value) const override;
    void Read(Yr::IBinaryChannel& channel, bool& value) const override;
    void Read(Yr::IBinaryChannel& channel, short& value) const override;
    void Read(Yr::IBinaryChannel& channel, unsigned short& value) const override;
    void Read(Yr::IBinaryChannel& channel, int& value) const override;
    void Read(Yr::IBinaryChannel& channel, Yr::Int64& value) const override;
    void Read(Yr::IBinaryChannel& channel, float& value) const override;
    void Read(Yr::IBinaryChannel& channel, double& value) const override;
    void Read(Yr::IBinaryChannel& channel, Yr::Guid& value) const override;
    void Read(Yr::IBinaryChannel& channel, Yr::UniString& value) const override;

private:
    bool m_standardGuid;
};

}  // namespace Morvelan::Common::IO
