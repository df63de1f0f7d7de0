#include "Common/IO/GuidDeduplicationIProtocolX.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/GuidDeduplicationIProtocolX";
constexpr char kFullSelector = 1;
constexpr char kSequenceIdSelector = 2;

}  // namespace

GuidDeduplicationIProtocolX::GuidDeduplicationIProtocolX(const Yr::IProtocolX& wrapped)
    : m_wrapped(&wrapped) {}

GuidDeduplicationIProtocolX::~GuidDeduplicationIProtocolX() = default;

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, Yr::Guid& value) const {
    char selector = 0;
    GetInputProtocol().Read(channel, selector);
    if (selector == kFullSelector) {
        Yr::Guid guid{};
        GetInputProtocol().Read(channel, guid);
        m_guids.push_back(guid);
        value = guid;
        return;
    }
    if (selector != kSequenceIdSelector)
        throw Yr::IOException("Failed to read Guid: invalid selector.", kSourceUnit, __LINE__,
                              Yr::kIOErrorCode);
    unsigned int sequenceId = 0;
    GetInputProtocol().Read(channel, sequenceId);
    if (sequenceId >= m_guids.size())
        throw Yr::IOException("Failed to read Guid: invalid sequence id.", kSourceUnit, __LINE__,
                              Yr::kIOErrorCode);
    value = m_guids[sequenceId];
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, char& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, unsigned char& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, bool& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, short& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, unsigned short& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, int& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, unsigned int& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, Yr::Int64& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, Yr::UInt64& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, float& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, double& value) const {
    GetInputProtocol().Read(channel, value);
}

void GuidDeduplicationIProtocolX::Read(Yr::IBinaryChannel& channel, Yr::UniString& value) const {
    GetInputProtocol().Read(channel, value);
}

}  // namespace Morvelan::Common::IO
