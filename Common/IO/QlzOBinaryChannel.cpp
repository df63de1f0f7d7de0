#include "Common/IO/QlzOBinaryChannel.h"

#include <algorithm>
#include <cstring>

#include "Common/IO/QlzStreamHeader.h"
#include "Common/IO/QuickLZCompressor.h"
#include "Yr/BinProtocolX.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {
constexpr const char* kSourceUnit = "Common/IO/QlzOBinaryChannel";
}

QlzOBinaryChannel::QlzOBinaryChannel(Yr::OBinaryChannel& inner, Yr::UInt32 packetSize)
    : FilterOBinaryChannel(inner) {
    Initialize(packetSize);
}

QlzOBinaryChannel::QlzOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner,
                                     Yr::UInt32 packetSize)
    : FilterOBinaryChannel(inner, kSourceUnit, __LINE__) {
    Initialize(packetSize);
}

QlzOBinaryChannel::~QlzOBinaryChannel() = default;

void QlzOBinaryChannel::Initialize(Yr::UInt32 packetSize) {
    if (packetSize < MinimumPacketSize)
        throw Yr::IllegalArgumentException(
            "Invalid packet size: size is less than minimum packet size.", kSourceUnit, __LINE__,
            Yr::kIllegalArgumentErrorCode);
    if (packetSize > MaximumPacketSize)
        throw Yr::IllegalArgumentException(
            "Invalid packet size: size is greater than maximum packet size.", kSourceUnit, __LINE__,
            Yr::kIllegalArgumentErrorCode);
    m_packetSize = packetSize;
    m_packet = Yr::AllocateMemoryBlock(packetSize);
    m_block = Yr::AllocateMemoryBlock(packetSize + QuickLZCompressor::kMaxExpansion);
    m_compressor = std::make_unique<QuickLZCompressor>();
}

void QlzOBinaryChannel::CheckOpened(const char* sourceFile, Yr::UInt32 line) const {
    if (m_closed)
        throw Yr::IOException("QuickLZ binary output channel is closed.", sourceFile, line,
                              Yr::kIOErrorCode);
}

void QlzOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    CheckOpened(kSourceUnit, __LINE__);
    if (size == 0) return;
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    m_finished = false;
    while (size > 0) {
        // Whole packets of a large write are compressed where they are:
        // collecting them first would only copy them.
        if (m_packetFill == 0 && size >= m_packetSize) {
            WritePacket(buffer, m_packetSize);
            buffer += m_packetSize;
            size -= m_packetSize;
            continue;
        }
        const Yr::UInt32 count = std::min(size, m_packetSize - m_packetFill);
        std::memcpy(m_packet.get() + m_packetFill, buffer, count);
        m_packetFill += count;
        buffer += count;
        size -= count;
        if (m_packetFill == m_packetSize) WritePacket();
    }
}

void QlzOBinaryChannel::Flush() {
    CheckOpened(kSourceUnit, __LINE__);
    WriteHeaderOnce();
    if (m_packetFill > 0) WritePacket();
    m_inner.Flush();
}

void QlzOBinaryChannel::Finish() {
    CheckOpened(kSourceUnit, __LINE__);
    WriteHeaderOnce();
    if (m_packetFill > 0) WritePacket();
    m_finished = true;
}

void QlzOBinaryChannel::Close() {
    if (m_closed) return;
    Finish();
    m_closed = true;
    m_inner.Close();
}

void QlzOBinaryChannel::WriteHeaderOnce() {
    if (m_headerWritten) return;
    QlzStreamHeader{m_packetSize}.Write(m_inner);
    m_headerWritten = true;
}

void QlzOBinaryChannel::WritePacket() {
    WritePacket(m_packet.get(), m_packetFill);
    m_packetFill = 0;
}

void QlzOBinaryChannel::WritePacket(const char* data, Yr::UInt32 size) {
    WriteHeaderOnce();
    const Yr::UInt32 blockSize = m_compressor->Compress(data, size, m_block.get());
    Yr::GetBinOProtocolX().Write(m_inner, static_cast<unsigned int>(blockSize));
    m_inner.Write(m_block.get(), blockSize);
}

}  // namespace Morvelan::Common::IO
