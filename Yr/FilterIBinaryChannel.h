#pragma once

#include "Yr/ChannelArguments.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

namespace Yr {

// Base of the input filters: holds the inner channel, shared (kept alive by
// the filter) or borrowed (the caller keeps it alive), and forwards every
// call to it. Close() closes the inner channel; destruction leaves it open.
class FilterIBinaryChannel : public IBinaryChannel {
public:
    using IBinaryChannel::Read;
    UInt32 Read(char* buffer, UInt32 size, ReadSomeModeSelector) override {
        return m_inner.Read(buffer, size, kReadSome);
    }
    UInt64 GetAvailable() const override { return m_inner.GetAvailable(); }
    void Close() override { m_inner.Close(); }

protected:
    explicit FilterIBinaryChannel(IBinaryChannel& inner) : m_inner(inner) {}
    // An empty `inner` throws "Invalid input channel: channel is null." with
    // the derived filter's source unit and line.
    FilterIBinaryChannel(const Ref<IBinaryChannel>& inner, const char* sourceFile, UInt32 line)
        : m_innerRef(inner), m_inner(RequireInput(inner, sourceFile, line)) {}

    Ref<IBinaryChannel> m_innerRef;  // empty when borrowed
    IBinaryChannel& m_inner;         // every call goes through this
};

}  // namespace Yr
