#include "Common/IO/ArchiveOBinaryChannel.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Common/IO/ArchiveEntryImpl.h"
#include "Common/IO/ArchiveException.h"
#include "Common/IO/ArchiveFormat.h"
#include "Common/IO/CRC32OBinaryChannel.h"
#include "Common/IO/CountingOBinaryChannel.h"
#include "Common/IO/DeflaterOBinaryChannel.h"
#include "Common/IO/JavaDataOutputProtocolX.h"
#include "Common/IO/QlzOBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/ChannelArguments.h"
#include "Yr/ChunkedOBinarySubChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryOBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/ArchiveOBinaryChannel";
constexpr Yr::UInt32 kPaddingPiece = 128;
// Writes of this size or more cost little more per byte unbuffered.
constexpr Yr::UInt32 kDirectWriteSize = 4096;

const Yr::OProtocolX& Protocol() {
    return JavaDataOutputProtocolX::GetInstance();
}

// The channels one entry's data passes through, top (Write) to bottom:
// buffer, CRC-32, size counter, compressor if any, archived-size counter,
// chunk framing onto the archive's channel.
struct EntryChain {
    EntryChain(Yr::OBinaryChannel& channel, ArchiveEntry::Method method, int level)
        : chunked(channel, Protocol(), ArchiveFormat::kChunkSize),
          archivedCounter(chunked),
          deflater(method == ArchiveEntry::Deflated
                       ? std::make_unique<DeflaterOBinaryChannel>(
                             archivedCounter, level, ArchiveFormat::kDeflateBufferSize, false)
                       : nullptr),
          qlz(method == ArchiveEntry::QuickLZ
                  ? std::make_unique<QlzOBinaryChannel>(archivedCounter,
                                                        ArchiveFormat::kQuickLZPacketSize)
                  : nullptr),
          sizeCounter(Compressor()),
          crc(sizeCounter),
          buffer(crc, ArchiveFormat::kEntryBufferSize) {}

    Yr::OBinaryChannel& Compressor() {
        if (deflater) return *deflater;
        if (qlz) return *qlz;
        return archivedCounter;
    }

    // Ends the compressed data and the framing; the archive's channel stays open.
    void Finish() {
        buffer.Drain();
        if (deflater) deflater->Finish();
        if (qlz) qlz->Finish();
        chunked.Close();
    }

    Yr::ChunkedOBinarySubChannel chunked;
    CountingOBinaryChannel archivedCounter;
    std::unique_ptr<DeflaterOBinaryChannel> deflater;
    std::unique_ptr<QlzOBinaryChannel> qlz;
    CountingOBinaryChannel sizeCounter;
    CRC32OBinaryChannel crc;
    Yr::BufferedOBinaryChannel buffer;
};

void CheckHeaderName(const Yr::UniString& name, Yr::UInt32 line) {
    if (name.IsEmpty())
        throw Yr::IllegalArgumentException("Invalid archive header name: name is empty.",
                                           kSourceUnit, line, Yr::kIllegalArgumentErrorCode);
}

void WriteHeaders(Yr::OBinaryChannel& channel, const ArchiveEntry::Headers& headers) {
    Protocol().Write(channel, static_cast<Yr::UInt32>(headers.GetCount()));
    for (const auto& [name, value] : headers) {
        Protocol().Write(channel, name);
        Protocol().Write(channel, value);
    }
}

}  // namespace

class ArchiveOBinaryChannel::Impl {
public:
    Impl(const Yr::Ref<Yr::OBinaryChannel>& channelRef, Yr::OBinaryChannel& channel,
         Yr::UInt32 reservedHeaderSize)
        : m_channelRef(channelRef), m_channel(channel), m_reservedHeaderSize(reservedHeaderSize) {
        if (reservedHeaderSize != 0 && reservedHeaderSize < kMinimumReservedHeaderSize)
            throw Yr::IllegalArgumentException("Invalid header size: header size is too small.",
                                               kSourceUnit, __LINE__,
                                               Yr::kIllegalArgumentErrorCode);
    }

    void CheckOpened(Yr::UInt32 line) const {
        if (m_closed)
            throw Yr::IOException("Archive binary output channel is closed.", kSourceUnit, line,
                                  Yr::kIOErrorCode);
    }

    void CheckNotFinished(Yr::UInt32 line) const {
        CheckOpened(line);
        if (m_finished)
            throw Yr::IOException("Archive binary output channel is finished.", kSourceUnit, line,
                                  Yr::kIOErrorCode);
    }

    void CheckHeadersEditable(Yr::UInt32 line) const {
        CheckNotFinished(line);
        if (m_headerWritten)
            throw ArchiveException(
                "Archive headers can't be updated, header has already been written.", kSourceUnit,
                line, Yr::kIOErrorCode);
    }

    void WriteHeaderOnce() {
        if (m_headerWritten) return;
        CountingOBinaryChannel counter(m_channel);
        counter.Write(ArchiveFormat::kMagic, ArchiveFormat::kMagicSize);
        Protocol().Write(counter, ArchiveFormat::kMajorVersion);
        Protocol().Write(counter, ArchiveFormat::kMinorVersion);
        Protocol().Write(counter, m_reservedHeaderSize);
        WriteHeaders(counter, m_headers);
        if (m_reservedHeaderSize != 0) PadTo(counter, m_reservedHeaderSize);
        counter.Flush();
        m_headerWritten = true;
    }

    Yr::Ref<ArchiveEntry> PutNextEntry(const Yr::UniString& name, const Headers& headers,
                                       Method method) {
        ArchiveEntryImpl::CheckHeaders(headers, kSourceUnit, __LINE__);
        if (name.IsEmpty())
            throw Yr::IllegalArgumentException("Invalid archive entry name: name is empty.",
                                               kSourceUnit, __LINE__,
                                               Yr::kIllegalArgumentErrorCode);
        CheckNotFinished(__LINE__);
        if (method < ArchiveEntry::Deflated || method > ArchiveEntry::Default)
            throw Yr::IllegalArgumentException("Invalid archive entry compression method.",
                                               kSourceUnit, __LINE__,
                                               Yr::kIllegalArgumentErrorCode);
        WriteHeaderOnce();
        CloseEntry();
        const Method resolved = method == ArchiveEntry::Default ? m_method : method;
        auto entry = Yr::MakeRef<ArchiveEntryImpl>(name, headers, resolved);
        WriteRecord(*entry);
        m_chain = std::make_unique<EntryChain>(m_channel, resolved, m_level);
        m_entry = entry;
        return entry;
    }

    void CloseEntry() {
        if (!m_chain) return;
        // Released however the closing ends: a chain that failed is not
        // finished a second time.
        const std::unique_ptr<EntryChain> chain = std::move(m_chain);
        const Yr::Ref<ArchiveEntryImpl> entry = std::move(m_entry);
        chain->Finish();
        entry->Close(chain->archivedCounter.GetCount(), chain->sizeCounter.GetCount(),
                     chain->crc.GetCRC());
        Protocol().Write(m_channel, entry->GetArchivedSize());
        Protocol().Write(m_channel, entry->GetSize());
        Protocol().Write(m_channel, entry->GetCrc());
    }

    void Write(const char* buffer, Yr::UInt32 size) {
        if (buffer == nullptr)
            throw Yr::IllegalArgumentException("Invalid source buffer: source buffer is null.",
                                               kSourceUnit, __LINE__,
                                               Yr::kIllegalArgumentErrorCode);
        if (size == 0)
            throw Yr::IllegalArgumentException("Invalid source buffer: buffer size is 0.",
                                               kSourceUnit, __LINE__,
                                               Yr::kIllegalArgumentErrorCode);
        CheckNotFinished(__LINE__);
        if (!m_chain)
            throw ArchiveException(
                "Failed to write data to archive binary output channel: archive entry hasn't "
                "been started yet.",
                kSourceUnit, __LINE__, Yr::kIOErrorCode);
        // A large write skips the entry's buffer, which would only copy it
        // once more: the compressors and the framing below collect on their
        // own, in pieces that do not depend on how the data was written.
        if (size >= kDirectWriteSize) {
            m_chain->buffer.Drain();
            m_chain->crc.Write(buffer, size);
        } else {
            m_chain->buffer.Write(buffer, size);
        }
    }

    void Flush() {
        CheckOpened(__LINE__);
        if (m_chain)
            m_chain->buffer.Flush();
        else
            WriteHeaderOnce();
        m_channel.Flush();
    }

    void Finish() {
        if (m_finished) return;
        if (m_chain)
            CloseEntry();
        else
            WriteHeaderOnce();
        m_finished = true;
    }

    void Close() {
        if (m_closed) return;
        m_closed = true;
        // The underlying channel is closed even when finishing fails, so no
        // file stays open behind a broken archive; the failure wins.
        try {
            Finish();
        } catch (...) {
            try {
                m_channel.Close();
            } catch (...) {
            }
            throw;
        }
        m_channel.Close();
    }

    Headers m_headers;
    Method m_method = ArchiveEntry::Deflated;
    int m_level = -1;
    Yr::Ref<ArchiveEntryImpl> m_entry;
    std::unique_ptr<EntryChain> m_chain;
    bool m_finished = false;
    bool m_closed = false;

private:
    void PadTo(CountingOBinaryChannel& counter, Yr::UInt32 size) {
        if (counter.GetCount() > size)
            throw ArchiveException(
                "Failed to write archive header: archive header size exceeds the specified "
                "header size.",
                kSourceUnit, __LINE__, Yr::kIOErrorCode);
        static constexpr char kZeros[kPaddingPiece] = {};
        while (counter.GetCount() < size) {
            const auto piece = static_cast<Yr::UInt32>(
                std::min<Yr::UInt64>(kPaddingPiece, size - counter.GetCount()));
            counter.Write(kZeros, piece);
        }
    }

    // Built in memory and sent in one write: a name too long to encode then
    // fails before the archive has a partial record.
    void WriteRecord(const ArchiveEntryImpl& entry) {
        Yr::MemoryOBinaryChannel record;
        Protocol().Write(record, entry.GetName());
        Protocol().Write(record, static_cast<Yr::UInt32>(entry.GetMethod()));
        WriteHeaders(record, entry.EnumerateHeaders());
        m_channel.Write(record.GetBuffer(), static_cast<Yr::UInt32>(record.GetSize()));
        m_channel.Flush();
    }

    Yr::Ref<Yr::OBinaryChannel> m_channelRef;
    Yr::OBinaryChannel& m_channel;
    Yr::UInt32 m_reservedHeaderSize;
    bool m_headerWritten = false;
};

ArchiveOBinaryChannel::ArchiveOBinaryChannel(Yr::OBinaryChannel& channel,
                                             Yr::UInt32 reservedHeaderSize)
    : m_impl(std::make_unique<Impl>(nullptr, channel, reservedHeaderSize)) {}

ArchiveOBinaryChannel::ArchiveOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& channel,
                                             Yr::UInt32 reservedHeaderSize)
    : m_impl(std::make_unique<Impl>(channel, Yr::RequireOutput(channel, kSourceUnit, __LINE__),
                                    reservedHeaderSize)) {}

ArchiveOBinaryChannel::~ArchiveOBinaryChannel() = default;

void ArchiveOBinaryChannel::PutHeader(const Yr::UniString& name, const Yr::UniString& value) {
    CheckHeaderName(name, __LINE__);
    m_impl->CheckHeadersEditable(__LINE__);
    m_impl->m_headers.Put(name, value);
}

void ArchiveOBinaryChannel::ClearHeader(const Yr::UniString& name) {
    CheckHeaderName(name, __LINE__);
    m_impl->CheckHeadersEditable(__LINE__);
    m_impl->m_headers.Remove(name);
}

void ArchiveOBinaryChannel::ClearHeaders() {
    m_impl->CheckHeadersEditable(__LINE__);
    m_impl->m_headers.Clear();
}

Yr::UniString ArchiveOBinaryChannel::GetHeader(const Yr::UniString& name) const {
    Yr::UniString value;
    GetHeader(name, value);
    return value;
}

bool ArchiveOBinaryChannel::GetHeader(const Yr::UniString& name, Yr::UniString& value) const {
    return m_impl->m_headers.TryGet(name, value);
}

bool ArchiveOBinaryChannel::ConstainsHeader(const Yr::UniString& name) const {
    return m_impl->m_headers.Contains(name);
}

const ArchiveOBinaryChannel::Headers& ArchiveOBinaryChannel::EnumerateHeaders() const {
    return m_impl->m_headers;
}

Yr::UInt32 ArchiveOBinaryChannel::GetHeaderCount() const {
    return static_cast<Yr::UInt32>(m_impl->m_headers.GetCount());
}

bool ArchiveOBinaryChannel::HasHeaders() const {
    return m_impl->m_headers.GetCount() > 0;
}

void ArchiveOBinaryChannel::SetMethod(Method method) {
    if (method < ArchiveEntry::Deflated || method > ArchiveEntry::QuickLZ)
        throw Yr::IllegalArgumentException("Invalid default archive entry compression method.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    m_impl->m_method = method;
}

void ArchiveOBinaryChannel::SetCompressionLevel(int level) {
    if (level < -1 || level > 9)
        throw Yr::IllegalArgumentException("Invalid compression level.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    m_impl->m_level = level;
}

Yr::Ref<ArchiveEntry> ArchiveOBinaryChannel::PutNextEntry(const Yr::UniString& name,
                                                          const Headers& headers, Method method) {
    return m_impl->PutNextEntry(name, headers, method);
}

Yr::Ref<ArchiveEntry> ArchiveOBinaryChannel::PutNextEntry(const Yr::UniString& name,
                                                          Method method) {
    return m_impl->PutNextEntry(name, Headers(), method);
}

void ArchiveOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    m_impl->Write(buffer, size);
}

void ArchiveOBinaryChannel::CloseEntry() {
    m_impl->CheckOpened(__LINE__);
    m_impl->CloseEntry();
}

Yr::Ref<ArchiveEntry> ArchiveOBinaryChannel::GetCurrentEntry() const {
    return m_impl->m_entry;
}

bool ArchiveOBinaryChannel::HasCurrentEntry() const {
    return !m_impl->m_entry.IsNull();
}

void ArchiveOBinaryChannel::Flush() {
    m_impl->Flush();
}

void ArchiveOBinaryChannel::Finish() {
    m_impl->CheckOpened(__LINE__);
    m_impl->Finish();
}

bool ArchiveOBinaryChannel::IsFinished() const {
    m_impl->CheckOpened(__LINE__);
    return m_impl->m_finished;
}

void ArchiveOBinaryChannel::Close() {
    m_impl->Close();
}

}  // namespace Morvelan::Common::IO
