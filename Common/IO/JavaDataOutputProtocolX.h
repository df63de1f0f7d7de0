#pragma once

#include "Yr/OProtocolX.h"

namespace Morvelan::Common::IO {

// Writes the layout of Java's DataOutputStream to binary channels, the twin
// of JavaDataInputProtocolX: numbers big-endian in one channel call each,
// NaN as Java's canonical bits, long double as a double, strings through
// WriteUTF. The optimized GUID layout writes the GUID's 16 bytes of memory.
// Channel exceptions pass through. Immutable: any number of threads may
// share one.
class JavaDataOutputProtocolX : public Yr::OProtocolX {
public:
    explicit JavaDataOutputProtocolX(bool standardGuid);

    static const JavaDataOutputProtocolX& GetInstance();
    static const JavaDataOutputProtocolX& GetOptimizedInstance();

    using Yr::OProtocolX::Write;
    void Write(Yr::OBinaryChannel& channel, char value) const override;
    void Write(Yr::OBinaryChannel& channel, bool value) const override;
    void Write(Yr::OBinaryChannel& channel, short value) const override;
    void Write(Yr::OBinaryChannel& channel, unsigned short value) const override;
    void Write(Yr::OBinaryChannel& channel, int value) const override;
    void Write(Yr::OBinaryChannel& channel, Yr::Int64 value) const override;
    void Write(Yr::OBinaryChannel& channel, float value) const override;
    void Write(Yr::OBinaryChannel& channel, double value) const override;
    void Write(Yr::OBinaryChannel& channel, long double value) const override;
    void Write(Yr::OBinaryChannel& channel, const Yr::Guid& value) const override;
    void Write(Yr::OBinaryChannel& channel, const Yr::UniString& value) const override;

private:
    bool m_standardGuid;
};

}  // namespace Morvelan::Common::IO
