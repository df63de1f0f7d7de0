#pragma once

#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Writes every block to two channels, first to channel 1, then to channel 2.
// A failure in channel 1 leaves channel 2 untouched; nothing keeps the two in
// step after a failure. Borrowed channels must outlive the splitter; shared
// ones are kept alive by it. Close() closes both; destruction closes neither.
class SplitterOBinaryChannel final : public Yr::OBinaryChannel {
public:
    SplitterOBinaryChannel(Yr::OBinaryChannel& output1, Yr::OBinaryChannel& output2);
    SplitterOBinaryChannel(Yr::OBinaryChannel& output1, const Yr::Ref<Yr::OBinaryChannel>& output2);
    SplitterOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& output1, Yr::OBinaryChannel& output2);
    SplitterOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& output1,
                           const Yr::Ref<Yr::OBinaryChannel>& output2);
    SplitterOBinaryChannel(const SplitterOBinaryChannel&) = delete;
    SplitterOBinaryChannel& operator=(const SplitterOBinaryChannel&) = delete;
    ~SplitterOBinaryChannel() override;

    // Unlike the other filters, checks its arguments: a null `buffer` or a
    // `size` of 0 throws IllegalArgumentException.
    void Write(const char* buffer, Yr::UInt32 size) override;
    void Flush() override;
    void Close() override;

private:
    Yr::OBinaryChannel& GetOutputChannel1() { return m_output1; }
    Yr::OBinaryChannel& GetOutputChannel2() { return m_output2; }

    Yr::Ref<Yr::OBinaryChannel> m_outputRef1;  // empty when borrowed
    Yr::Ref<Yr::OBinaryChannel> m_outputRef2;  // empty when borrowed
    Yr::OBinaryChannel& m_output1;
    Yr::OBinaryChannel& m_output2;
};

}  // namespace Morvelan::Common::IO
