#pragma once

#include "Yr/ChannelArguments.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Yr {

// Base of the output filters: holds the inner channel, shared (kept alive by
// the filter) or borrowed (the caller keeps it alive), and forwards every
// call to it. Close() closes the inner channel; destruction leaves it open.
class FilterOBinaryChannel : public OBinaryChannel {
public:
    void Write(const char* buffer, UInt32 size) override { m_inner.Write(buffer, size); }
    void Flush() override { m_inner.Flush(); }
    void Close() override { m_inner.Close(); }

protected:
    explicit FilterOBinaryChannel(OBinaryChannel& inner) : m_inner(inner) {}
    // An empty `inner` throws "Invalid output channel: channel is null." with
    // the derived filter's source unit and line.
    FilterOBinaryChannel(const Ref<OBinaryChannel>& inner, const char* sourceFile, UInt32 line)
        : m_innerRef(inner), m_inner(RequireOutput(inner, sourceFile, line)) {}

    Ref<OBinaryChannel> m_innerRef;  // empty when borrowed
    OBinaryChannel& m_inner;         // every call goes through this
};

}  // namespace Yr
