#pragma once

#include <memory>

#include "Common/IO/ArchiveEntry.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Writes the library's archive stream onto an output channel: an archive
// header with string headers, then entries, each a record (name, method,
// headers), its data framed in chunks after compression, and a trailer with
// archived size, size and CRC-32. Nothing needs seeking, and there is no end
// record: the archive ends where the stream ends.
//
// The header is written by the first PutNextEntry, Flush or Finish; archive
// headers can change only before that. With a reserved header size R the
// header is padded to R bytes, so a later rewrite can replace it in place.
// Close finishes the archive and closes the underlying channel; destruction
// does neither. Used by one thread at a time.
class ArchiveOBinaryChannel final : public Yr::OBinaryChannel {
public:
    using Headers = ArchiveEntry::Headers;
    using Method = ArchiveEntry::Method;

    static constexpr Yr::UInt32 kMinimumReservedHeaderSize = 256;

    // `reservedHeaderSize` is 0 (no reservation) or at least 256; the plain
    // reference is borrowed, the caller keeps it alive.
    ArchiveOBinaryChannel(Yr::OBinaryChannel& channel, Yr::UInt32 reservedHeaderSize);
    ArchiveOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& channel,
                          Yr::UInt32 reservedHeaderSize);
    ~ArchiveOBinaryChannel() override;

    void PutHeader(const Yr::UniString& name, const Yr::UniString& value);
    void ClearHeader(const Yr::UniString& name);
    void ClearHeaders();
    Yr::UniString GetHeader(const Yr::UniString& name) const;
    bool GetHeader(const Yr::UniString& name, Yr::UniString& value) const;
    bool ConstainsHeader(const Yr::UniString& name) const;
    const Headers& EnumerateHeaders() const;
    Yr::UInt32 GetHeaderCount() const;
    bool HasHeaders() const;

    // The method of entries put with Default: Deflated unless changed.
    void SetMethod(Method method);
    // zlib's level for Deflated entries put afterwards: -1 (default) to 9.
    void SetCompressionLevel(int level);

    Yr::Ref<ArchiveEntry> PutNextEntry(const Yr::UniString& name, const Headers& headers,
                                       Method method);
    Yr::Ref<ArchiveEntry> PutNextEntry(const Yr::UniString& name, Method method);
    // Appends to the current entry's data.
    void Write(const char* buffer, Yr::UInt32 size) override;
    // Ends the current entry's data and writes its trailer; nothing when no
    // entry is open.
    void CloseEntry();
    Yr::Ref<ArchiveEntry> GetCurrentEntry() const;
    bool HasCurrentEntry() const;

    void Flush() override;
    // Closes the open entry (or writes the header); the channel stays open.
    void Finish();
    bool IsFinished() const;
    void Close() override;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Morvelan::Common::IO
