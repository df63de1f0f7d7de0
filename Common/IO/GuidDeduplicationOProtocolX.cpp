#include "Common/IO/GuidDeduplicationOProtocolX.h"

namespace Morvelan::Common::IO {
namespace {

constexpr char kFullSelector = 1;
constexpr char kSequenceIdSelector = 2;
// Marks a GUID whose full write is still under way.
constexpr Yr::UInt32 kPendingId = 0xFFFFFFFF;
constexpr float kMaxLoadFactor = 1.5f;

}  // namespace

GuidDeduplicationOProtocolX::GuidDeduplicationOProtocolX(const Yr::OProtocolX& wrapped)
    : m_wrapped(&wrapped) {
    m_sequenceIds.max_load_factor(kMaxLoadFactor);
}

GuidDeduplicationOProtocolX::~GuidDeduplicationOProtocolX() = default;

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, const Yr::Guid& value) const {
    const auto [entry, inserted] = m_sequenceIds.try_emplace(value, kPendingId);
    if (!inserted) {
        GetOutputProtocol().Write(channel, kSequenceIdSelector);
        GetOutputProtocol().Write(channel, static_cast<unsigned int>(entry->second));
        return;
    }
    try {
        GetOutputProtocol().Write(channel, kFullSelector);
        GetOutputProtocol().Write(channel, value);
    } catch (...) {
        m_sequenceIds.erase(entry);
        throw;
    }
    entry->second = static_cast<Yr::UInt32>(m_sequenceIds.size() - 1);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, char value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, unsigned char value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, bool value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, short value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, unsigned short value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, int value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, unsigned int value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, Yr::Int64 value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, Yr::UInt64 value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, float value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, double value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel, long double value) const {
    GetOutputProtocol().Write(channel, value);
}

void GuidDeduplicationOProtocolX::Write(Yr::OBinaryChannel& channel,
                                        const Yr::UniString& value) const {
    GetOutputProtocol().Write(channel, value);
}

}  // namespace Morvelan::Common::IO
