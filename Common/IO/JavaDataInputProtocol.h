#pragma once

#include "Yr/IProtocol.h"

namespace Morvelan::Common::IO {

// Reads the layout of Java's DataOutputStream from error-code channels:
// numbers big-endian, bool true only for the byte 1, a GUID as its fields in
// reading order (32, 16, 16 bits big-endian, then 8 bytes), strings as
// ReadUTF reads them. Each read returns 0 or the failure's status; the value
// is then unspecified. Stateless: any number of threads may share one.
class JavaDataInputProtocol : public Yr::IProtocol {
public:
    JavaDataInputProtocol() = default;
    JavaDataInputProtocol(const JavaDataInputProtocol&) = default;
    JavaDataInputProtocol& operator=(const JavaDataInputProtocol&) = default;
    ~JavaDataInputProtocol() override = default;

    static JavaDataInputProtocol& GetInstance();

    using Yr::IProtocol::Read;
    Yr::YrErrCode Read(Yr::IChannel& channel, char& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, bool& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, short& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, unsigned short& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, int& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, Yr::Int64& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, float& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, double& value) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, Yr::Guid& value) override;
    // UTF-8 is the platform's narrow code, so the bytes are copied as read.
    Yr::YrErrCode Read(Yr::IChannel& channel, char* buffer) override;
    Yr::YrErrCode Read(Yr::IChannel& channel, Yr::UniString& value) override;
};

}  // namespace Morvelan::Common::IO
