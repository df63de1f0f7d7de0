#include "Common/IO/ZipOBinaryChannel.h"

#include <optional>
#include <string>
#include <vector>

#include "Common/IO/CRC32.h"
#include "Common/IO/CountingOBinaryChannel.h"
#include "Common/IO/DeflaterOBinaryChannel.h"
#include "Common/IO/ZipException.h"
#include "Common/IO/ZipFormat.h"
#include "Common/IO/ZipTime.h"
#include "Yr/ChannelArguments.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

using namespace ZipFormat;

constexpr const char* kSourceUnit = "Common/IO/ZipOBinaryChannel";
constexpr Yr::UInt32 kDeflateBufferSize = 65536;
constexpr Yr::UInt64 kLimit32 = 0xFFFFFFFF;

[[noreturn]] void Fail(const Yr::UniString& message, Yr::UInt32 line) {
    throw ZipException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

bool HasHighBytes(const std::string& text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) >= 0x80) return true;
    return false;
}

// The extended timestamp, modification time only, as local and central
// headers both carry it.
void AppendTimestamp(std::string& extra, Yr::Int64 time) {
    Append<Yr::UInt16>(extra, kExtendedTimestampTag);
    Append<Yr::UInt16>(extra, 5);
    Append<Yr::UInt8>(extra, 1);
    Append<Yr::UInt32>(extra, static_cast<Yr::UInt32>(time));
}

// What the central directory needs of an entry once it is written.
struct WrittenEntry {
    Yr::Ref<ZipEntry> entry;
    Yr::UInt16 flags;
    Yr::UInt32 dosTime;
};

}  // namespace

class ZipOBinaryChannel::Impl {
public:
    Impl(Yr::OBinaryChannel& output, const Yr::Ref<Yr::OBinaryChannel>& shared)
        : m_shared(shared), m_output(output) {}

    void PutNextEntry(const Yr::Ref<ZipEntry>& entry) {
        CheckNotFinished(__LINE__);
        if (!entry) Refuse("Invalid entry: entry is null.", __LINE__);
        CloseEntry();
        entry->SetLocalHeaderOffset(m_output.GetCount());
        const bool known = entry->GetSize() != ZipEntry::kUnknownSize &&
                           entry->GetCompressedSize() != ZipEntry::kUnknownSize && entry->HasCrc();
        // Folders have nothing to describe afterwards.
        const bool described = !known && !entry->IsDirectory();
        if (entry->IsDirectory()) {
            entry->SetMethod(ZipEntry::Stored);
            entry->SetSize(0);
            entry->SetCompressedSize(0);
            entry->SetCrc(0);
        }
        if (entry->GetMethod() != ZipEntry::Stored && entry->GetMethod() != ZipEntry::Deflated)
            Fail(Yr::UniString::Printf("Entry '%T': compression method %u is not supported.",
                                       entry->GetName(), unsigned{entry->GetMethod()}),
                 __LINE__);
        Yr::UInt16 flags = described ? kFlagDataDescriptor : 0;
        if (HasHighBytes(entry->GetName().ToUtf8()) || HasHighBytes(entry->GetComment().ToUtf8()))
            flags |= kFlagUtf8;
        m_written.push_back({entry, flags, ZipTime::ToDosDateTime(entry->GetTime())});
        WriteLocalHeader(m_written.back(), described);
        m_crc = CRC32();
        m_size = 0;
        m_dataStart = m_output.GetCount();
        if (entry->GetMethod() == ZipEntry::Deflated)
            m_deflater.emplace(m_output, m_level, kDeflateBufferSize, true);
        m_current = entry;
    }

    void Write(const char* buffer, Yr::UInt32 size) {
        CheckNotFinished(__LINE__);
        if (!m_current) Fail("No entry to write to: call PutNextEntry first.", __LINE__);
        if (size == 0) return;
        m_crc.Update(buffer, size);
        m_size += size;
        if (m_deflater)
            m_deflater->Write(buffer, size);
        else
            m_output.Write(buffer, size);
    }

    void CloseEntry() {
        if (!m_current) return;
        const Yr::Ref<ZipEntry> entry = m_current;
        m_current.Reset();
        if (m_deflater) {
            m_deflater->Finish();
            m_deflater.reset();
        }
        const Yr::UInt64 compressed = m_output.GetCount() - m_dataStart;
        const WrittenEntry& written = m_written.back();
        if ((written.flags & kFlagDataDescriptor) == 0) {
            CheckAnnounced(*entry, compressed);
            return;
        }
        entry->SetSize(m_size);
        entry->SetCompressedSize(compressed);
        entry->SetCrc(m_crc.GetValue());
        WriteDataDescriptor(*entry);
    }

    void Finish() {
        if (m_finished) return;
        CloseEntry();
        const Yr::UInt64 directoryStart = m_output.GetCount();
        for (const WrittenEntry& written : m_written) WriteCentralHeader(written);
        const Yr::UInt64 directorySize = m_output.GetCount() - directoryStart;
        WriteEnd(directoryStart, directorySize);
        m_finished = true;
    }

    void Flush() { m_output.Flush(); }

    void Close() {
        if (m_closed) return;
        m_closed = true;
        try {
            Finish();
        } catch (...) {
            m_output.Close();
            throw;
        }
        m_output.Close();
    }

    bool IsFinished() const { return m_finished; }
    void SetComment(const Yr::UniString& comment) {
        if (comment.ToUtf8().size() > 0xFFFF)
            Refuse("Invalid comment: comment is too long.", __LINE__);
        m_comment = comment;
    }
    void SetLevel(int level) {
        if (level < -1 || level > 9)
            Refuse("Invalid compression level: level is not between -1 and 9.", __LINE__);
        m_level = level;
    }

private:
    [[noreturn]] static void Refuse(const char* message, Yr::UInt32 line) {
        throw Yr::IllegalArgumentException(message, kSourceUnit, line,
                                           Yr::kIllegalArgumentErrorCode);
    }

    void CheckNotFinished(Yr::UInt32 line) const {
        if (m_finished) Fail("Zip binary output channel is finished.", line);
    }

    // Sizes and CRC given in advance went into the local header: the data
    // must agree with them, or the stream would lie.
    void CheckAnnounced(const ZipEntry& entry, Yr::UInt64 compressed) const {
        if (entry.GetSize() != m_size || entry.GetCompressedSize() != compressed ||
            entry.GetCrc() != m_crc.GetValue())
            Fail(Yr::UniString::Printf(
                     "Entry '%T': the data written does not match the size and CRC-32 given "
                     "in advance.",
                     entry.GetName()),
                 __LINE__);
    }

    static bool NeedsZip64Locally(const ZipEntry& entry, bool described) {
        return !described && (entry.GetSize() >= kLimit32 || entry.GetCompressedSize() >= kLimit32);
    }

    void WriteLocalHeader(const WrittenEntry& written, bool described) {
        const ZipEntry& entry = *written.entry;
        const bool zip64 = NeedsZip64Locally(entry, described);
        std::string extra;
        if (zip64) {
            Append<Yr::UInt16>(extra, kZip64ExtraTag);
            Append<Yr::UInt16>(extra, 16);
            Append<Yr::UInt64>(extra, entry.GetSize());
            Append<Yr::UInt64>(extra, entry.GetCompressedSize());
        }
        AppendTimestamp(extra, entry.GetTime());
        extra += entry.GetExtra();
        const std::string& name = entry.GetName().ToUtf8();
        CheckLength(name.size(), entry, "name");
        CheckLength(extra.size(), entry, "extra data");
        std::string header;
        Append<Yr::UInt32>(header, kLocalHeaderSignature);
        Append<Yr::UInt16>(header, zip64 ? kVersionZip64 : kVersionDefault);
        Append<Yr::UInt16>(header, written.flags);
        Append<Yr::UInt16>(header, entry.GetMethod());
        Append<Yr::UInt32>(header, written.dosTime);
        Append<Yr::UInt32>(header, described ? 0 : entry.GetCrc());
        Append<Yr::UInt32>(header, described ? 0
                                   : zip64   ? kZip64Marker32
                                             : static_cast<Yr::UInt32>(entry.GetCompressedSize()));
        Append<Yr::UInt32>(header, described ? 0
                                   : zip64   ? kZip64Marker32
                                             : static_cast<Yr::UInt32>(entry.GetSize()));
        Append<Yr::UInt16>(header, static_cast<Yr::UInt16>(name.size()));
        Append<Yr::UInt16>(header, static_cast<Yr::UInt16>(extra.size()));
        header += name;
        header += extra;
        WriteRecord(header);
    }

    // 8-byte sizes only when they need them: streaming readers take 4.
    void WriteDataDescriptor(const ZipEntry& entry) {
        const bool zip64 = entry.GetSize() >= kLimit32 || entry.GetCompressedSize() >= kLimit32;
        std::string descriptor;
        Append<Yr::UInt32>(descriptor, kDataDescriptorSignature);
        Append<Yr::UInt32>(descriptor, entry.GetCrc());
        if (zip64) {
            Append<Yr::UInt64>(descriptor, entry.GetCompressedSize());
            Append<Yr::UInt64>(descriptor, entry.GetSize());
        } else {
            Append<Yr::UInt32>(descriptor, static_cast<Yr::UInt32>(entry.GetCompressedSize()));
            Append<Yr::UInt32>(descriptor, static_cast<Yr::UInt32>(entry.GetSize()));
        }
        WriteRecord(descriptor);
    }

    void WriteCentralHeader(const WrittenEntry& written) {
        const ZipEntry& entry = *written.entry;
        // A 32-bit slot holding the marker sends the reader to the zip64
        // field, which holds those values in this order.
        std::string zip64;
        const auto slot = [&zip64](Yr::UInt64 value) -> Yr::UInt32 {
            if (value < kLimit32) return static_cast<Yr::UInt32>(value);
            Append<Yr::UInt64>(zip64, value);
            return kZip64Marker32;
        };
        const Yr::UInt32 size = slot(entry.GetSize());
        const Yr::UInt32 compressed = slot(entry.GetCompressedSize());
        const Yr::UInt32 offset = slot(entry.GetLocalHeaderOffset());
        std::string extra;
        if (!zip64.empty()) {
            Append<Yr::UInt16>(extra, kZip64ExtraTag);
            Append<Yr::UInt16>(extra, static_cast<Yr::UInt16>(zip64.size()));
            extra += zip64;
            m_zip64 = true;
        }
        AppendTimestamp(extra, entry.GetTime());
        extra += entry.GetExtra();
        const std::string& name = entry.GetName().ToUtf8();
        const std::string& comment = entry.GetComment().ToUtf8();
        CheckLength(extra.size(), entry, "extra data");
        CheckLength(comment.size(), entry, "comment");
        std::string header;
        Append<Yr::UInt32>(header, kCentralHeaderSignature);
        Append<Yr::UInt16>(header, kVersionMadeBy);
        Append<Yr::UInt16>(header, zip64.empty() ? kVersionDefault : kVersionZip64);
        Append<Yr::UInt16>(header, written.flags);
        Append<Yr::UInt16>(header, entry.GetMethod());
        Append<Yr::UInt32>(header, written.dosTime);
        Append<Yr::UInt32>(header, entry.GetCrc());
        Append<Yr::UInt32>(header, compressed);
        Append<Yr::UInt32>(header, size);
        Append<Yr::UInt16>(header, static_cast<Yr::UInt16>(name.size()));
        Append<Yr::UInt16>(header, static_cast<Yr::UInt16>(extra.size()));
        Append<Yr::UInt16>(header, static_cast<Yr::UInt16>(comment.size()));
        Append<Yr::UInt16>(header, 0);  // disk number
        Append<Yr::UInt16>(header, 0);  // internal attributes
        Append<Yr::UInt32>(header, entry.GetExternalAttributes());
        Append<Yr::UInt32>(header, offset);
        header += name;
        header += extra;
        header += comment;
        WriteRecord(header);
    }

    void WriteEnd(Yr::UInt64 directoryStart, Yr::UInt64 directorySize) {
        const Yr::UInt64 count = m_written.size();
        const bool zip64 = m_zip64 || count >= kZip64Marker16 || directoryStart >= kLimit32 ||
                           directorySize >= kLimit32;
        std::string end;
        if (zip64) {
            const Yr::UInt64 recordStart = m_output.GetCount();
            Append<Yr::UInt32>(end, kZip64EndSignature);
            Append<Yr::UInt64>(end, kZip64EndSize - 12);  // size of the rest
            Append<Yr::UInt16>(end, kVersionMadeBy);
            Append<Yr::UInt16>(end, kVersionZip64);
            Append<Yr::UInt32>(end, 0);  // this disk
            Append<Yr::UInt32>(end, 0);  // disk of the directory
            Append<Yr::UInt64>(end, count);
            Append<Yr::UInt64>(end, count);
            Append<Yr::UInt64>(end, directorySize);
            Append<Yr::UInt64>(end, directoryStart);
            Append<Yr::UInt32>(end, kZip64LocatorSignature);
            Append<Yr::UInt32>(end, 0);
            Append<Yr::UInt64>(end, recordStart);
            Append<Yr::UInt32>(end, 1);  // disks in all
        }
        const std::string& comment = m_comment.ToUtf8();
        const auto clamp16 = [](Yr::UInt64 value) {
            return value >= kZip64Marker16 ? kZip64Marker16 : static_cast<Yr::UInt16>(value);
        };
        const auto clamp32 = [](Yr::UInt64 value) {
            return value >= kLimit32 ? kZip64Marker32 : static_cast<Yr::UInt32>(value);
        };
        Append<Yr::UInt32>(end, kEndSignature);
        Append<Yr::UInt16>(end, 0);
        Append<Yr::UInt16>(end, 0);
        Append<Yr::UInt16>(end, clamp16(count));
        Append<Yr::UInt16>(end, clamp16(count));
        Append<Yr::UInt32>(end, clamp32(directorySize));
        Append<Yr::UInt32>(end, clamp32(directoryStart));
        Append<Yr::UInt16>(end, static_cast<Yr::UInt16>(comment.size()));
        end += comment;
        WriteRecord(end);
    }

    static void CheckLength(std::size_t length, const ZipEntry& entry, const char* what) {
        if (length > 0xFFFF)
            Fail(Yr::UniString::Printf("Entry '%T': its %s is longer than 65535 bytes.",
                                       entry.GetName(), what),
                 __LINE__);
    }

    void WriteRecord(const std::string& record) {
        m_output.Write(record.data(), static_cast<Yr::UInt32>(record.size()));
    }

    Yr::Ref<Yr::OBinaryChannel> m_shared;  // empty when borrowed
    CountingOBinaryChannel m_output;       // its count is the offset in the stream
    std::optional<DeflaterOBinaryChannel> m_deflater;
    std::vector<WrittenEntry> m_written;
    Yr::Ref<ZipEntry> m_current;
    CRC32 m_crc;
    Yr::UInt64 m_size = 0;
    Yr::UInt64 m_dataStart = 0;
    Yr::UniString m_comment;
    int m_level = -1;
    bool m_zip64 = false;
    bool m_finished = false;
    bool m_closed = false;
};

ZipOBinaryChannel::ZipOBinaryChannel(Yr::OBinaryChannel& output)
    : m_impl(std::make_unique<Impl>(output, Yr::Ref<Yr::OBinaryChannel>())) {}

ZipOBinaryChannel::ZipOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& output)
    : m_impl(std::make_unique<Impl>(Yr::RequireOutput(output, kSourceUnit, __LINE__), output)) {}

ZipOBinaryChannel::~ZipOBinaryChannel() = default;

void ZipOBinaryChannel::SetComment(const Yr::UniString& comment) {
    m_impl->SetComment(comment);
}
void ZipOBinaryChannel::SetLevel(int level) {
    m_impl->SetLevel(level);
}
void ZipOBinaryChannel::PutNextEntry(const Yr::Ref<ZipEntry>& entry) {
    m_impl->PutNextEntry(entry);
}

Yr::Ref<ZipEntry> ZipOBinaryChannel::PutNextEntry(const Yr::UniString& name,
                                                  ZipEntry::Method method) {
    const auto entry = Yr::MakeRef<ZipEntry>(name);
    entry->SetMethod(method);
    m_impl->PutNextEntry(entry);
    return entry;
}

void ZipOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    if (buffer == nullptr && size != 0)
        throw Yr::IllegalArgumentException("Invalid buffer: buffer is null.", kSourceUnit, __LINE__,
                                           Yr::kIllegalArgumentErrorCode);
    m_impl->Write(buffer, size);
}

void ZipOBinaryChannel::CloseEntry() {
    m_impl->CloseEntry();
}
void ZipOBinaryChannel::Finish() {
    m_impl->Finish();
}
bool ZipOBinaryChannel::IsFinished() const {
    return m_impl->IsFinished();
}
void ZipOBinaryChannel::Flush() {
    m_impl->Flush();
}
void ZipOBinaryChannel::Close() {
    m_impl->Close();
}

}  // namespace Morvelan::Common::IO
