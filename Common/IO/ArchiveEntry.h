#pragma once

#include "Yr/HashTable.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// One entry of an archive stream: its name, string headers, compression
// method and, once the entry is closed, its sizes and CRC-32. Held as
// Ref<ArchiveEntry>; ArchiveEntryImpl is the one concrete class.
class ArchiveEntry {
public:
    // The numbers are those stored in the archive; Default is only an
    // argument meaning the writer's default method and is never stored.
    enum Method : Yr::UInt32 { Deflated = 1, Stored = 2, QuickLZ = 3, Default = 4 };

    using Headers = Yr::HashTable<Yr::UniString, Yr::UniString>;

    virtual ~ArchiveEntry();

    virtual Yr::UniString GetName() const = 0;
    virtual Yr::UInt32 GetHeaderCount() const = 0;
    virtual bool HasHeaders() const = 0;
    // Iterable over std::pair<const UniString, UniString>, in no set order.
    virtual const Headers& EnumerateHeaders() const = 0;
    // An empty name throws IllegalArgumentException.
    virtual bool ContainsHeader(const Yr::UniString& name) const = 0;
    // The value, or an empty string when the header is absent.
    Yr::UniString GetHeader(const Yr::UniString& name) const;
    virtual bool GetHeader(const Yr::UniString& name, Yr::UniString& value) const = 0;
    virtual Method GetMethod() const = 0;
    // True once the sizes and CRC are known.
    virtual bool IsClosed() const = 0;
    virtual Yr::UInt64 GetArchivedSize() const = 0;
    virtual Yr::UInt64 GetSize() const = 0;
    virtual Yr::UInt32 GetCrc() const = 0;
    virtual bool Equals(const ArchiveEntry& other) const = 0;

protected:
    ArchiveEntry() = default;
    ArchiveEntry(const ArchiveEntry&) = default;
    ArchiveEntry& operator=(const ArchiveEntry&) = default;
};

}  // namespace Morvelan::Common::IO
