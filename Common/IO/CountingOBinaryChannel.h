#pragma once

#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Passes writes through and counts their bytes. A borrowed inner channel must
// outlive the filter; a shared one is kept alive by it. Close() closes the
// inner channel; destruction leaves it open.
class CountingOBinaryChannel final : public Yr::OBinaryChannel {
public:
    explicit CountingOBinaryChannel(Yr::OBinaryChannel& inner);
    explicit CountingOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner);
    CountingOBinaryChannel(const CountingOBinaryChannel&) = delete;
    CountingOBinaryChannel& operator=(const CountingOBinaryChannel&) = delete;
    ~CountingOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    void Flush() override;
    void Close() override;

    // Bytes written since construction or the last ResetCount().
    Yr::UInt64 GetCount() const { return m_count; }
    void ResetCount() { m_count = 0; }

private:
    Yr::Ref<Yr::OBinaryChannel> m_innerRef;  // empty when borrowed
    Yr::OBinaryChannel& m_inner;             // every call goes through this
    Yr::UInt64 m_count = 0;
};

}  // namespace Morvelan::Common::IO
