#pragma once

#include <unordered_map>

#include "Yr/Guid.h"
#include "Yr/OProtocolX.h"

namespace Morvelan::Common::IO {

// Shortens a stream that carries the same GUIDs many times: the first
// occurrence of a GUID is written in full after the selector byte 1 and
// numbered 0, 1, 2, ... in order; every later one is the selector 2 and its
// number as an unsigned int. Every other value goes to the wrapped protocol
// unchanged. The table is the stream's state: one object serves one stream,
// and is used by one thread at a time.
class GuidDeduplicationOProtocolX : public Yr::OProtocolX {
public:
    // Borrows `wrapped`; the caller keeps it alive.
    explicit GuidDeduplicationOProtocolX(const Yr::OProtocolX& wrapped);
    GuidDeduplicationOProtocolX(const GuidDeduplicationOProtocolX&) = default;
    GuidDeduplicationOProtocolX(GuidDeduplicationOProtocolX&&) = default;
    GuidDeduplicationOProtocolX& operator=(const GuidDeduplicationOProtocolX&) = default;
    GuidDeduplicationOProtocolX& operator=(GuidDeduplicationOProtocolX&&) = default;
    ~GuidDeduplicationOProtocolX() override;

    // A failed write of a new GUID leaves it out of the table, so the table
    // keeps matching what a reader can have seen.
    void Write(Yr::OBinaryChannel& channel, const Yr::Guid& value) const override;

    void Write(Yr::OBinaryChannel& channel, char value) const override;
    void Write(Yr::OBinaryChannel& channel, unsigned char value) const override;
    void Write(Yr::OBinaryChannel& channel, bool value) const override;
    void Write(Yr::OBinaryChannel& channel, short value) const override;
    void Write(Yr::OBinaryChannel& channel, unsigned short value) const override;
    void Write(Yr::OBinaryChannel& channel, int value) const override;
    void Write(Yr::OBinaryChannel& channel, unsigned int value) const override;
    void Write(Yr::OBinaryChannel& channel, Yr::Int64 value) const override;
    void Write(Yr::OBinaryChannel& channel, Yr::UInt64 value) const override;
    void Write(Yr::OBinaryChannel& channel, float value) const override;
    void Write(Yr::OBinaryChannel& channel, double value) const override;
    void Write(Yr::OBinaryChannel& channel, long double value) const override;
    void Write(Yr::OBinaryChannel& channel, const Yr::UniString& value) const override;

private:
    const Yr::OProtocolX& GetOutputProtocol() const { return *m_wrapped; }

    // A pointer, not a reference, so that the object stays assignable.
    const Yr::OProtocolX* m_wrapped;
    // The protocol interface writes through const objects; the table is the
    // stream's state all the same.
    mutable std::unordered_map<Yr::Guid, Yr::UInt32> m_sequenceIds;
};

}  // namespace Morvelan::Common::IO
