#pragma once

#include <memory>
#include <vector>

#include "Common/IO/ArchiveEntry.h"
#include "InputOutput/Location.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Random access to an archive stored in a file: its headers and entries
// (each read lazily, once, by reading the file forward), an entry's data as
// an input channel, extraction into a folder, and changed headers written
// back by Update: in place when the archive reserved room for its header,
// otherwise through a ".updated" copy exchanged with the original in one
// step, so an interrupted update leaves the old archive whole.
// Entries cannot be added or removed. Used by one thread at a time.
class ArchiveFile {
public:
    using Headers = ArchiveEntry::Headers;
    using Entries = std::vector<Yr::Ref<ArchiveEntry>>;

    // Nothing is read yet.
    explicit ArchiveFile(const ::IO::Location& location);
    ~ArchiveFile();
    ArchiveFile(const ArchiveFile&) = delete;
    ArchiveFile& operator=(const ArchiveFile&) = delete;

    Yr::UniString GetHeader(const Yr::UniString& name);
    bool GetHeader(const Yr::UniString& name, Yr::UniString& value);
    bool ConstainsHeader(const Yr::UniString& name);
    const Headers& EnumerateHeaders();
    Yr::UInt32 GetHeaderCount();
    bool HasHeaders();
    Yr::UInt32 GetReservedHeaderSize();
    // These change the headers in memory; Update writes them to the file.
    void PutHeader(const Yr::UniString& name, const Yr::UniString& value);
    void ClearHeader(const Yr::UniString& name);
    void ClearHeaders();
    bool IsUpdated() const;

    // Null when absent; with several of one name, the first.
    Yr::Ref<ArchiveEntry> GetEntry(const Yr::UniString& name);
    bool ConstainsEntry(const Yr::UniString& name);
    // In file order.
    const Entries& EnumerateEntries();
    Yr::UInt32 GetEntryCount();
    bool HasEntries();

    // The entry's uncompressed data, through a file of its own.
    Yr::Ref<Yr::IBinaryChannel> GetInputChannel(const Yr::Ref<ArchiveEntry>& entry);
    void ExtractTo(const ::IO::Location& folder);

    void Update();
    void Close();
    bool IsOpen() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Morvelan::Common::IO
