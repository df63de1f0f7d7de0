#pragma once

#include "Common/IO/ArchiveEntry.h"

namespace Morvelan::Common::IO {

// The archive entry the writer creates and the reader returns. Name, headers
// and method are fixed once it exists; the writer records the sizes and CRC
// through Close when the entry's data is complete.
class ArchiveEntryImpl final : public ArchiveEntry {
public:
    // An empty name, or a header with an empty name, throws
    // IllegalArgumentException.
    ArchiveEntryImpl(const Yr::UniString& name, const Headers& headers, Yr::UInt32 method);
    ArchiveEntryImpl(const Yr::UniString& name, Yr::UInt32 method);
    ~ArchiveEntryImpl() override;

    // Throws IllegalArgumentException for a table that holds an empty name.
    static void CheckHeaders(const Headers& headers, const char* sourceFile, Yr::UInt32 line);

    Yr::UniString GetName() const override { return m_name; }
    Yr::UInt32 GetHeaderCount() const override;
    bool HasHeaders() const override { return m_headers.GetCount() > 0; }
    const Headers& EnumerateHeaders() const override { return m_headers; }
    bool ContainsHeader(const Yr::UniString& name) const override;
    using ArchiveEntry::GetHeader;
    bool GetHeader(const Yr::UniString& name, Yr::UniString& value) const override;
    Method GetMethod() const override { return static_cast<Method>(m_method); }
    bool IsClosed() const override { return m_closed; }
    Yr::UInt64 GetArchivedSize() const override { return m_archivedSize; }
    Yr::UInt64 GetSize() const override { return m_size; }
    Yr::UInt32 GetCrc() const override { return m_crc; }
    bool Equals(const ArchiveEntry& other) const override;

    // Used while an entry is read, before its data: headers follow the record.
    void PutHeader(const Yr::UniString& name, const Yr::UniString& value);
    // Records what the entry's data came to and marks it closed.
    void Close(Yr::UInt64 archivedSize, Yr::UInt64 size, Yr::UInt32 crc);

private:
    Yr::UniString m_name;
    Headers m_headers;
    Yr::UInt32 m_method;
    bool m_closed = false;
    Yr::UInt64 m_archivedSize = 0;
    Yr::UInt64 m_size = 0;
    Yr::UInt32 m_crc = 0;
};

}  // namespace Morvelan::Common::IO
