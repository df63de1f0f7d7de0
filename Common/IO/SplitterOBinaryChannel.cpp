#include "Common/IO/SplitterOBinaryChannel.h"

#include "Yr/Exceptions.h"

#include "Yr/ChannelArguments.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/SplitterOBinaryChannel";
}

// Shared references are checked in member order: channel 1 before channel 2.

SplitterOBinaryChannel::SplitterOBinaryChannel(Yr::OBinaryChannel& output1,
                                               Yr::OBinaryChannel& output2)
    : m_output1(output1), m_output2(output2) {}

SplitterOBinaryChannel::SplitterOBinaryChannel(Yr::OBinaryChannel& output1,
                                               const Yr::Ref<Yr::OBinaryChannel>& output2)
    : m_outputRef2(output2),
      m_output1(output1),
      m_output2(Yr::RequireOutput(output2, kSourceUnit, __LINE__)) {}

SplitterOBinaryChannel::SplitterOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& output1,
                                               Yr::OBinaryChannel& output2)
    : m_outputRef1(output1),
      m_output1(Yr::RequireOutput(output1, kSourceUnit, __LINE__)),
      m_output2(output2) {}

SplitterOBinaryChannel::SplitterOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& output1,
                                               const Yr::Ref<Yr::OBinaryChannel>& output2)
    : m_outputRef1(output1),
      m_outputRef2(output2),
      m_output1(Yr::RequireOutput(output1, kSourceUnit, __LINE__)),
      m_output2(Yr::RequireOutput(output2, kSourceUnit, __LINE__)) {}

SplitterOBinaryChannel::~SplitterOBinaryChannel() = default;

void SplitterOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid source: source is null.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid length: length is 0.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    GetOutputChannel1().Write(buffer, size);
    GetOutputChannel2().Write(buffer, size);
}

void SplitterOBinaryChannel::Flush() {
    GetOutputChannel1().Flush();
    GetOutputChannel2().Flush();
}

void SplitterOBinaryChannel::Close() {
    GetOutputChannel1().Close();
    GetOutputChannel2().Close();
}

}  // namespace Morvelan::Common::IO
