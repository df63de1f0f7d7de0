#pragma once

#include "Yr/OProtocol.h"

namespace Morvelan::Common::IO {

// Writes the layout of Java's DataOutputStream to error-code channels, the
// twin of JavaDataInputProtocol. A NaN is written as Java's canonical bits;
// long double is written as a double. Each value is one call of the channel
// (a GUID two calls of 8 bytes). Stateless: any number of threads may share
// one.
class JavaDataOutputProtocol : public Yr::OProtocol {
public:
    JavaDataOutputProtocol() = default;
    JavaDataOutputProtocol(const JavaDataOutputProtocol&) = default;
    JavaDataOutputProtocol& operator=(const JavaDataOutputProtocol&) = default;
    ~JavaDataOutputProtocol() override = default;

    static JavaDataOutputProtocol& GetInstance();

    using Yr::OProtocol::Write;
    Yr::YrErrCode Write(Yr::OChannel& channel, char value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, bool value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, short value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, unsigned short value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, int value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, Yr::Int64 value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, float value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, double value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, long double value) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, const Yr::Guid& value) override;
    // UTF-8 text; text that is not well-formed UTF-8 gives Yr::kWriteErrorCode.
    Yr::YrErrCode Write(Yr::OChannel& channel, const char* text) override;
    Yr::YrErrCode Write(Yr::OChannel& channel, const Yr::UniString& text) override;
};

}  // namespace Morvelan::Common::IO
