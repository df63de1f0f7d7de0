#include "Common/IO/ArchiveIBinaryChannel.h"

#include <algorithm>
#include <cstring>

#include "Common/IO/ArchiveEntryImpl.h"
#include "Common/IO/ArchiveException.h"
#include "Common/IO/ArchiveFormat.h"
#include "Common/IO/CRC32IBinaryChannel.h"
#include "Common/IO/CountingIBinaryChannel.h"
#include "Common/IO/InflaterIBinaryChannel.h"
#include "Common/IO/JavaDataInputProtocolX.h"
#include "Common/IO/QlzIBinaryChannel.h"
#include "Yr/BufferedIBinaryChannel.h"
#include "Yr/ChannelArguments.h"
#include "Yr/ChunkedIBinarySubChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/ArchiveIBinaryChannel";

const Yr::IProtocolX& Protocol() {
    return JavaDataInputProtocolX::GetInstance();
}

// The channels one entry's data comes through, bottom to top: chunk framing
// on the archive's channel, archived-size counter, decompressor if any, size
// counter, CRC-32, buffer (Read).
struct EntryChain {
    EntryChain(Yr::IBinaryChannel& channel, ArchiveEntry::Method method)
        : chunked(channel, Protocol()),
          archivedCounter(chunked),
          inflater(method == ArchiveEntry::Deflated
                       ? std::make_unique<InflaterIBinaryChannel>(
                             archivedCounter, ArchiveFormat::kDeflateBufferSize, false)
                       : nullptr),
          qlz(method == ArchiveEntry::QuickLZ ? std::make_unique<QlzIBinaryChannel>(archivedCounter)
                                              : nullptr),
          sizeCounter(Decompressor()),
          crc(sizeCounter),
          buffer(crc, ArchiveFormat::kEntryBufferSize) {}

    Yr::IBinaryChannel& Decompressor() {
        if (inflater) return *inflater;
        if (qlz) return *qlz;
        return archivedCounter;
    }

    // Reads the rest of the data, then the framing to its end mark, so that
    // every compressed byte is counted even where the decompressor stopped.
    void Drain() {
        char piece[ArchiveFormat::kDrainPieceSize];
        while (buffer.Read(piece, sizeof piece, Yr::kReadSome) != 0) {
        }
        while (archivedCounter.Read(piece, sizeof piece, Yr::kReadSome) != 0) {
        }
    }

    Yr::ChunkedIBinarySubChannel chunked;
    CountingIBinaryChannel archivedCounter;
    std::unique_ptr<InflaterIBinaryChannel> inflater;
    std::unique_ptr<QlzIBinaryChannel> qlz;
    CountingIBinaryChannel sizeCounter;
    CRC32IBinaryChannel crc;
    Yr::BufferedIBinaryChannel buffer;
};

[[noreturn]] void ThrowFormatError(const char* message, Yr::UInt32 line) {
    throw ArchiveException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

template <class Value>
Value ReadValue(Yr::IBinaryChannel& channel) {
    Value value{};
    Protocol().Read(channel, value);
    return value;
}

}  // namespace

class ArchiveIBinaryChannel::Impl {
public:
    Impl(const Yr::Ref<Yr::IBinaryChannel>& channelRef, Yr::IBinaryChannel& channel)
        : m_channelRef(channelRef), m_channel(channel) {}

    void CheckOpened(Yr::UInt32 line) const {
        if (m_closed)
            throw Yr::IOException("Archive binary input channel is closed.", kSourceUnit, line,
                                  Yr::kIOErrorCode);
    }

    // Every query goes through here: the header is read on first need.
    Impl& Ready(Yr::UInt32 line) {
        CheckOpened(line);
        ReadHeaderOnce();
        return *this;
    }

    Yr::Ref<ArchiveEntry> GetNextEntry() {
        Ready(__LINE__);
        LeaveEntry();
        Yr::Ref<ArchiveEntryImpl> entry = std::move(m_peeked);
        if (!entry) entry = ReadRecord();
        if (!entry) return nullptr;
        m_chain = std::make_unique<EntryChain>(m_channel, entry->GetMethod());
        m_entry = entry;
        return entry;
    }

    Yr::Ref<ArchiveEntry> PeekNextEntry() {
        Ready(__LINE__);
        LeaveEntry();
        if (!m_peeked) m_peeked = ReadRecord();
        return m_peeked;
    }

    void LeaveEntry() {
        if (!m_chain) return;
        // Released however the check ends: a failed entry is not read twice.
        const std::unique_ptr<EntryChain> chain = std::move(m_chain);
        const Yr::Ref<ArchiveEntryImpl> entry = std::move(m_entry);
        chain->Drain();
        const Yr::UInt64 archivedSize = chain->archivedCounter.GetCount();
        const Yr::UInt64 size = chain->sizeCounter.GetCount();
        const Yr::UInt32 crc = chain->crc.GetCRC();
        if (ReadValue<Yr::UInt64>(m_channel) != archivedSize)
            ThrowFormatError("Failed to read archive entry: entry archived size check failed.",
                             __LINE__);
        if (ReadValue<Yr::UInt64>(m_channel) != size)
            ThrowFormatError("Failed to read archive entry: entry size check failed.", __LINE__);
        if (ReadValue<Yr::UInt32>(m_channel) != crc)
            ThrowFormatError("Failed to read archive entry: entry crc check failed.", __LINE__);
        entry->Close(archivedSize, size, crc);
    }

    void Close() {
        if (m_closed) return;
        m_closed = true;
        m_chain.reset();
        m_entry.Reset();
        m_peeked.Reset();
        m_channel.Close();
    }

    Yr::UInt32 m_reservedHeaderSize = 0;
    Headers m_headers;
    Yr::Ref<ArchiveEntryImpl> m_entry;
    std::unique_ptr<EntryChain> m_chain;
    bool m_closed = false;

private:
    void ReadHeaderOnce() {
        if (m_headerRead) return;
        CountingIBinaryChannel counter(m_channel);
        char magic[ArchiveFormat::kMagicSize];
        counter.Read(magic, sizeof magic, Yr::kReadAll);
        if (std::memcmp(magic, ArchiveFormat::kMagic, sizeof magic) != 0)
            ThrowFormatError("Failed to read archive header: invalid archive header magic.",
                             __LINE__);
        const auto major = ReadValue<Yr::UInt32>(counter);
        const auto minor = ReadValue<Yr::UInt32>(counter);
        // Refused only when both differ so: older readers were this lenient.
        if (major != ArchiveFormat::kMajorVersion && minor >= 2)
            ThrowFormatError("Failed to read archive header: unsupported archive version read.",
                             __LINE__);
        m_reservedHeaderSize = ReadValue<Yr::UInt32>(counter);
        ReadHeaders(counter, [this](const Yr::UniString& name, const Yr::UniString& value) {
            m_headers.Put(name, value);
        });
        if (m_reservedHeaderSize != 0) SkipTo(counter, m_reservedHeaderSize);
        m_headerRead = true;
    }

    template <class Put>
    static void ReadHeaders(Yr::IBinaryChannel& channel, Put put) {
        // Each pair takes at least four bytes, so a false count ends with the
        // stream rather than with memory.
        for (auto count = ReadValue<Yr::UInt32>(channel); count > 0; --count) {
            const auto name = ReadValue<Yr::UniString>(channel);
            const auto value = ReadValue<Yr::UniString>(channel);
            put(name, value);
        }
    }

    static void SkipTo(CountingIBinaryChannel& counter, Yr::UInt32 size) {
        if (counter.GetCount() > size)
            ThrowFormatError(
                "Failed to read archive header: archive header size exceeds the specified header "
                "size.",
                __LINE__);
        char piece[ArchiveFormat::kDrainPieceSize];
        while (counter.GetCount() < size) {
            const auto count = static_cast<Yr::UInt32>(
                std::min<Yr::UInt64>(sizeof piece, size - counter.GetCount()));
            counter.Read(piece, count, Yr::kReadAll);
        }
    }

    // Null where the stream ends: there is no end record, so a name that
    // cannot be read is the end of the archive.
    Yr::Ref<ArchiveEntryImpl> ReadRecord() {
        Yr::UniString name;
        try {
            Protocol().Read(m_channel, name);
        } catch (const Yr::IOException&) {
            return nullptr;
        }
        if (name.IsEmpty())
            ThrowFormatError("Failed to read archive entry: invalid entry name.", __LINE__);
        const auto method = ReadValue<Yr::UInt32>(m_channel);
        if (method < ArchiveEntry::Deflated || method > ArchiveEntry::QuickLZ)
            ThrowFormatError("Failed to read archive entry: invalid entry method.", __LINE__);
        auto entry = Yr::MakeRef<ArchiveEntryImpl>(name, method);
        ReadHeaders(m_channel,
                    [&entry](const Yr::UniString& headerName, const Yr::UniString& value) {
                        entry->PutHeader(headerName, value);
                    });
        return entry;
    }

    Yr::Ref<Yr::IBinaryChannel> m_channelRef;
    Yr::IBinaryChannel& m_channel;
    bool m_headerRead = false;
    Yr::Ref<ArchiveEntryImpl> m_peeked;
};

ArchiveIBinaryChannel::ArchiveIBinaryChannel(Yr::IBinaryChannel& channel)
    : m_impl(std::make_unique<Impl>(nullptr, channel)) {}

ArchiveIBinaryChannel::ArchiveIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& channel)
    : m_impl(std::make_unique<Impl>(channel, Yr::RequireInput(channel, kSourceUnit, __LINE__))) {}

ArchiveIBinaryChannel::~ArchiveIBinaryChannel() = default;

Yr::UInt32 ArchiveIBinaryChannel::GetReservedHeaderSize() {
    return m_impl->Ready(__LINE__).m_reservedHeaderSize;
}

Yr::UniString ArchiveIBinaryChannel::GetHeader(const Yr::UniString& name) {
    Yr::UniString value;
    GetHeader(name, value);
    return value;
}

bool ArchiveIBinaryChannel::GetHeader(const Yr::UniString& name, Yr::UniString& value) {
    return m_impl->Ready(__LINE__).m_headers.TryGet(name, value);
}

bool ArchiveIBinaryChannel::ConstainsHeader(const Yr::UniString& name) {
    return m_impl->Ready(__LINE__).m_headers.Contains(name);
}

const ArchiveIBinaryChannel::Headers& ArchiveIBinaryChannel::EnumerateHeaders() {
    return m_impl->Ready(__LINE__).m_headers;
}

Yr::UInt32 ArchiveIBinaryChannel::GetHeaderCount() {
    return static_cast<Yr::UInt32>(m_impl->Ready(__LINE__).m_headers.GetCount());
}

bool ArchiveIBinaryChannel::HasHeaders() {
    return GetHeaderCount() > 0;
}

Yr::Ref<ArchiveEntry> ArchiveIBinaryChannel::GetNextEntry() {
    return m_impl->GetNextEntry();
}

Yr::Ref<ArchiveEntry> ArchiveIBinaryChannel::PeekNextEntry() {
    return m_impl->PeekNextEntry();
}

bool ArchiveIBinaryChannel::HasCurrentEntry() const {
    m_impl->CheckOpened(__LINE__);
    return !m_impl->m_entry.IsNull();
}

void ArchiveIBinaryChannel::CloseEntry() {
    m_impl->CheckOpened(__LINE__);
    m_impl->LeaveEntry();
}

Yr::UInt32 ArchiveIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    m_impl->CheckOpened(__LINE__);
    if (!m_impl->m_chain) return 0;
    return m_impl->m_chain->buffer.Read(buffer, size, Yr::kReadSome);
}

Yr::UInt64 ArchiveIBinaryChannel::GetAvailable() const {
    m_impl->CheckOpened(__LINE__);
    return m_impl->m_chain ? m_impl->m_chain->buffer.GetAvailable() : 0;
}

void ArchiveIBinaryChannel::Close() {
    m_impl->Close();
}

}  // namespace Morvelan::Common::IO
