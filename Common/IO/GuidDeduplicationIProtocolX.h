#pragma once

#include <vector>

#include "Yr/Guid.h"
#include "Yr/IProtocolX.h"

namespace Morvelan::Common::IO {

// Reads what GuidDeduplicationOProtocolX writes: after the selector 1 a GUID
// in full, which takes the next number; after the selector 2 the number of
// one seen before. Every other value comes from the wrapped protocol. One
// object serves one stream, used by one thread at a time.
class GuidDeduplicationIProtocolX : public Yr::IProtocolX {
public:
    // Borrows `wrapped`; the caller keeps it alive.
    explicit GuidDeduplicationIProtocolX(const Yr::IProtocolX& wrapped);
    GuidDeduplicationIProtocolX(const GuidDeduplicationIProtocolX&) = default;
    GuidDeduplicationIProtocolX(GuidDeduplicationIProtocolX&&) = default;
    GuidDeduplicationIProtocolX& operator=(const GuidDeduplicationIProtocolX&) = default;
    GuidDeduplicationIProtocolX& operator=(GuidDeduplicationIProtocolX&&) = default;
    ~GuidDeduplicationIProtocolX() override;

    // An unknown selector or number throws Yr::IOException; a failed read
    // leaves the table as it was.
    void Read(Yr::IBinaryChannel& channel, Yr::Guid& value) const override;

    void Read(Yr::IBinaryChannel& channel, char& value) const override;
    void Read(Yr::IBinaryChannel& channel, unsigned char& value) const override;
    void Read(Yr::IBinaryChannel& channel, bool& value) const override;
    void Read(Yr::IBinaryChannel& channel, short& value) const override;
    void Read(Yr::IBinaryChannel& channel, unsigned short& value) const override;
    void Read(Yr::IBinaryChannel& channel, int& value) const override;
    void Read(Yr::IBinaryChannel& channel, unsigned int& value) const override;
    void Read(Yr::IBinaryChannel& channel, Yr::Int64& value) const override;
    void Read(Yr::IBinaryChannel& channel, Yr::UInt64& value) const override;
    void Read(Yr::IBinaryChannel& channel, float& value) const override;
    void Read(Yr::IBinaryChannel& channel, double& value) const override;
    void Read(Yr::IBinaryChannel& channel, Yr::UniString& value) const override;

private:
    const Yr::IProtocolX& GetInputProtocol() const { return *m_wrapped; }

    const Yr::IProtocolX* m_wrapped;
    mutable std::vector<Yr::Guid> m_guids;
};

}  // namespace Morvelan::Common::IO
