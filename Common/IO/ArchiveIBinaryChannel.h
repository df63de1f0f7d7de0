#pragma once

#include <memory>

#include "Common/IO/ArchiveEntry.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Reads the archive stream that ArchiveOBinaryChannel writes, strictly
// forward: the archive header on first need, then one entry after another.
// While an entry is current, Read yields its uncompressed data. Leaving an
// entry (CloseEntry, or GetNextEntry) reads what is left of it and checks it
// against its trailer: archived size, size, then CRC-32.
//
// A damaged stream throws ArchiveException, or the exception of the
// underlying channel, of the decompressor or of the chunk framing. Close
// closes the underlying channel; destruction leaves it open. Used by one
// thread at a time.
class ArchiveIBinaryChannel final : public Yr::IBinaryChannel {
public:
    using Headers = ArchiveEntry::Headers;

    // Nothing is read yet. The plain reference is borrowed: the caller keeps
    // it alive.
    explicit ArchiveIBinaryChannel(Yr::IBinaryChannel& channel);
    explicit ArchiveIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& channel);
    ~ArchiveIBinaryChannel() override;

    Yr::UInt32 GetReservedHeaderSize();
    Yr::UniString GetHeader(const Yr::UniString& name);
    bool GetHeader(const Yr::UniString& name, Yr::UniString& value);
    bool ConstainsHeader(const Yr::UniString& name);
    const Headers& EnumerateHeaders();
    Yr::UInt32 GetHeaderCount();
    bool HasHeaders();

    // Leaves the current entry, then opens the next one; null at the end of
    // the archive.
    Yr::Ref<ArchiveEntry> GetNextEntry();
    // The next entry's record, without opening its data (leaving the current
    // entry first); the next GetNextEntry returns it.
    Yr::Ref<ArchiveEntry> PeekNextEntry();
    bool HasCurrentEntry() const;
    // Leaves the current entry, checking it; nothing when none is current.
    void CloseEntry();

    using Yr::IBinaryChannel::Read;
    // The current entry's data; 0 at its end and when no entry is current.
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    void Close() override;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Morvelan::Common::IO
