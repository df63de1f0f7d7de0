#include "Common/IO/PushbackIBinaryChannel.h"

#include <algorithm>
#include <cstring>

#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/PushbackIBinaryChannel";

Yr::UInt32 CheckSize(Yr::UInt32 size) {
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid pushback buffer size: size is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    return size;
}

void CheckLength(Yr::UInt32 size) {
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid length: length is 0.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
}

}  // namespace

PushbackIBinaryChannel::PushbackIBinaryChannel(Yr::IBinaryChannel& inner)
    : FilterIBinaryChannel(inner), m_readIndex(0), m_growable(true) {}

PushbackIBinaryChannel::PushbackIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__), m_readIndex(0), m_growable(true) {}

PushbackIBinaryChannel::PushbackIBinaryChannel(Yr::IBinaryChannel& inner, Yr::UInt32 size)
    : FilterIBinaryChannel(inner), m_readIndex(CheckSize(size)), m_growable(false) {
    m_buffer.Resize(size);
}

PushbackIBinaryChannel::PushbackIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner,
                                               Yr::UInt32 size)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__),
      m_readIndex(CheckSize(size)),
      m_growable(false) {
    m_buffer.Resize(size);
}

PushbackIBinaryChannel::~PushbackIBinaryChannel() = default;

void PushbackIBinaryChannel::Unread(const char* data, Yr::UInt32 size) {
    if (data == nullptr)
        throw Yr::IllegalArgumentException("Invalid source: source is null.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    CheckLength(size);
    if (m_readIndex >= size) {
        m_readIndex -= size;
        std::memcpy(m_buffer.GetData() + m_readIndex, data, size);
        return;
    }
    if (!m_growable)
        throw Yr::IOException("Pushback buffer is full.", kSourceUnit, __LINE__, Yr::kIOErrorCode);
    // No room in front: the bytes go behind the pending ones, index unmoved.
    const std::size_t end = m_buffer.GetSize();
    m_buffer.Resize(end + size);
    std::memcpy(m_buffer.GetData() + end, data, size);
}

Yr::UInt32 PushbackIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid destination: destination is null.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    CheckLength(size);
    const Yr::UInt32 taken = std::min(size, GetPendingCount());
    if (taken > 0) {
        std::memcpy(buffer, m_buffer.GetData() + m_readIndex, taken);
        m_readIndex += taken;
        if (taken == size) return taken;
    }
    return taken + m_inner.Read(buffer + taken, size - taken, Yr::kReadSome);
}

Yr::UInt64 PushbackIBinaryChannel::GetAvailable() const {
    return m_inner.GetAvailable() + GetPendingCount();
}

void PushbackIBinaryChannel::Close() {
    if (m_closed) return;
    m_inner.Close();
    m_closed = true;
}

void PushbackIBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("Pushback binary input channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

Yr::UInt32 PushbackIBinaryChannel::GetPendingCount() const {
    return static_cast<Yr::UInt32>(m_buffer.GetSize() - m_readIndex);
}

}  // namespace Morvelan::Common::IO
