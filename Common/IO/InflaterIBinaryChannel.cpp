#include "Common/IO/InflaterIBinaryChannel.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/InflaterIBinaryChannel";

[[noreturn]] void ThrowIllegalArgument(const char* message, Yr::UInt32 line) {
    throw Yr::IllegalArgumentException(message, kSourceUnit, line, Yr::kIllegalArgumentErrorCode);
}

}  // namespace

InflaterIBinaryChannel::InflaterIBinaryChannel(Yr::IBinaryChannel& channel, Yr::UInt32 bufferSize,
                                               bool nowrap)
    : FilterIBinaryChannel(channel) {
    Initialize(Yr::MakeRef<Inflater>(nowrap), bufferSize);
}

InflaterIBinaryChannel::InflaterIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& channel,
                                               Yr::UInt32 bufferSize, bool nowrap)
    : FilterIBinaryChannel(channel, kSourceUnit, __LINE__) {
    Initialize(Yr::MakeRef<Inflater>(nowrap), bufferSize);
}

InflaterIBinaryChannel::InflaterIBinaryChannel(Yr::IBinaryChannel& channel,
                                               const Yr::Ref<Inflater>& inflater,
                                               Yr::UInt32 bufferSize)
    : FilterIBinaryChannel(channel) {
    Initialize(inflater, bufferSize);
}

InflaterIBinaryChannel::InflaterIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& channel,
                                               const Yr::Ref<Inflater>& inflater,
                                               Yr::UInt32 bufferSize)
    : FilterIBinaryChannel(channel, kSourceUnit, __LINE__) {
    Initialize(inflater, bufferSize);
}

InflaterIBinaryChannel::~InflaterIBinaryChannel() = default;

void InflaterIBinaryChannel::Initialize(const Yr::Ref<Inflater>& inflater, Yr::UInt32 bufferSize) {
    if (inflater.IsNull()) ThrowIllegalArgument("Invalid inflater: inflater is null.", __LINE__);
    m_bufferSize = Yr::CheckBufferSize(bufferSize, kSourceUnit, __LINE__);
    m_buffer = Yr::AllocateMemoryBlock(bufferSize);
    m_inflater = inflater;
}

Yr::UInt32 InflaterIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    if (buffer == nullptr)
        ThrowIllegalArgument("Invalid destination: destination is null.", __LINE__);
    if (size == 0) ThrowIllegalArgument("Invalid length: length is 0.", __LINE__);
    CheckOpened(kSourceUnit, __LINE__);
    while (!m_endReached) {
        if (const Yr::UInt32 count = m_inflater->Inflate(buffer, size)) return count;
        if (m_inflater->IsFinished() || m_inflater->NeedsDictionary())
            m_endReached = true;
        else if (m_inflater->NeedsInput())
            FillBuffer();
    }
    return 0;
}

Yr::UInt64 InflaterIBinaryChannel::GetAvailable() const {
    CheckOpened(kSourceUnit, __LINE__);
    if (m_endReached || m_inflater->IsFinished()) return 0;
    if (m_inflater->NeedsInput()) return 1;
    return m_inflater->GetRemainingCount();
}

void InflaterIBinaryChannel::Close() {
    if (m_closed) return;
    m_inner.Close();
    m_closed = true;
}

void InflaterIBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Inflater binary input channel closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

void InflaterIBinaryChannel::FillBuffer() {
    const Yr::UInt32 count = m_inner.Read(m_buffer.get(), m_bufferSize, Yr::kReadSome);
    if (count == 0)
        throw Yr::IOException("Unexpected end of stream reached while inflating.", kSourceUnit,
                              __LINE__, Yr::kIOErrorCode);
    m_inflater->SetInput(m_buffer.get(), count);
}

}  // namespace Morvelan::Common::IO
