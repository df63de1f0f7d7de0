#include "Common/IO/ArchiveFile.h"

#include <utility>

#include "Common/IO/ArchiveException.h"
#include "Common/IO/ArchiveExtractor.h"
#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/BinaryChannelUtilities.h"
#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystem.h"
#include "Yr/BufferedIBinaryChannel.h"
#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/HashTable.h"
#include "Yr/MemoryOBinaryChannel.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/ArchiveFile";
// Reading goes forward only, so a large buffer costs nothing but memory.
constexpr Yr::UInt32 kReadBufferSize = 65536;
constexpr Yr::UInt32 kWriteBufferSize = 262144;
constexpr Yr::UInt32 kCopyPieceSize = 65536;

[[noreturn]] void ThrowArchiveError(const Yr::UniString& message, Yr::UInt32 line) {
    throw ArchiveException(message, kSourceUnit, line, Yr::kIOErrorCode);
}

[[noreturn]] void ThrowArchiveError(const Yr::UniString& message, const Yr::YrException& cause,
                                    Yr::UInt32 line) {
    throw ArchiveException(message, kSourceUnit, line, cause, Yr::kIOErrorCode);
}

void CheckName(const Yr::UniString& name, const char* message, Yr::UInt32 line) {
    if (name.IsEmpty())
        throw Yr::IllegalArgumentException(message, kSourceUnit, line,
                                           Yr::kIllegalArgumentErrorCode);
}

std::string PathOf(const ::IO::Location& location) {
    return LocationToPath(location).ToUtf8();
}

// The archive read forward from its start, through a file of its own.
class ArchiveReader {
public:
    explicit ArchiveReader(const ::IO::Location& location)
        : m_file(location, FileShare::Read),
          m_buffered(m_file, kReadBufferSize),
          m_archive(m_buffered) {}

    ArchiveIBinaryChannel& operator*() { return m_archive; }
    ArchiveIBinaryChannel* operator->() { return &m_archive; }

private:
    FileIBinaryChannel m_file;
    Yr::BufferedIBinaryChannel m_buffered;
    ArchiveIBinaryChannel m_archive;
};

// One entry's data, read from a file opened for this channel alone.
class EntryIBinaryChannel final : public Yr::IBinaryChannel {
public:
    EntryIBinaryChannel(const ::IO::Location& location, const Yr::UniString& name)
        : m_reader(std::make_unique<ArchiveReader>(location)) {
        for (;;) {
            const Yr::Ref<ArchiveEntry> entry = (*m_reader)->GetNextEntry();
            if (!entry)
                ThrowArchiveError(
                    "Failed to create archive file entry binary input channel: archive entry not "
                    "found.",
                    __LINE__);
            if (entry->GetName() == name) return;
        }
    }

    using Yr::IBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override {
        CheckOpened(__LINE__);
        return (*m_reader)->Read(buffer, size, Yr::kReadSome);
    }
    Yr::UInt64 GetAvailable() const override {
        CheckOpened(__LINE__);
        return (*m_reader)->GetAvailable();
    }
    void Close() override { m_reader.reset(); }

private:
    void CheckOpened(Yr::UInt32 line) const {
        if (!m_reader)
            throw Yr::IOException("Archive file entry binary input channel is closed.", kSourceUnit,
                                  line, Yr::kIOErrorCode);
    }

    std::unique_ptr<ArchiveReader> m_reader;
};

}  // namespace

class ArchiveFile::Impl {
public:
    explicit Impl(const ::IO::Location& location) : m_location(location) {
        CheckLocation(location, kSourceUnit, __LINE__);
        // A file needs a name: the root folder is not one.
        if (location.IsEmpty())
            ThrowFileError("Failed to create archive file.", ::IO::kInvalidLocation, kSourceUnit,
                           __LINE__);
    }

    void CheckOpened(Yr::UInt32 line) const {
        if (m_closed) ThrowArchiveError("Archive file is closed.", line);
    }

    Impl& WithHeaders(Yr::UInt32 line) {
        CheckOpened(line);
        if (!m_headersRead) ReadHeaders();
        return *this;
    }

    Impl& WithEntries(Yr::UInt32 line) {
        CheckOpened(line);
        if (!m_entriesRead) ReadEntries();
        return *this;
    }

    Yr::Ref<Yr::IBinaryChannel> GetInputChannel(const Yr::Ref<ArchiveEntry>& entry) {
        if (!entry)
            throw Yr::IllegalArgumentException("Invalid archive entry: entry is null.", kSourceUnit,
                                               __LINE__, Yr::kIllegalArgumentErrorCode);
        WithEntries(__LINE__);
        if (!m_index.Contains(entry->GetName()))
            ThrowArchiveError("Failed to get archive entry input channel: archive entry not found.",
                              __LINE__);
        return Yr::MakeRef<EntryIBinaryChannel>(m_location, entry->GetName());
    }

    void ExtractTo(const ::IO::Location& folder) {
        CheckOpened(__LINE__);
        try {
            ArchiveExtractor extractor(folder);
            ArchiveReader reader(m_location);
            while (const Yr::Ref<ArchiveEntry> entry = reader->GetNextEntry())
                extractor.Extract(*entry, *reader);
        } catch (const Yr::YrException& e) {
            ThrowArchiveError(
                Yr::UniString::Printf("Failed to extract archive file to folder: '%T'.",
                                      LocationToPath(folder)),
                e, __LINE__);
        }
    }

    void Update() {
        CheckOpened(__LINE__);
        if (!m_headersRead || !m_updated) return;
        try {
            if (m_reservedHeaderSize != 0)
                UpdateInPlace();
            else
                UpdateByCopy();
        } catch (const Yr::YrException& e) {
            ThrowArchiveError(Yr::UniString::Printf("Failed to update archive file: '%T'.",
                                                    LocationToPath(m_location)),
                              e, __LINE__);
        }
    }

    void Close() {
        m_closed = true;
        m_headers.Clear();
        m_index.Clear();
        m_entries.clear();
    }

    ::IO::Location m_location;
    bool m_headersRead = false;
    Headers m_headers;
    bool m_updated = false;
    Yr::HashTable<Yr::UniString, Yr::Ref<ArchiveEntry>> m_index;
    Entries m_entries;
    bool m_entriesRead = false;
    Yr::UInt32 m_reservedHeaderSize = 0;
    bool m_closed = false;

private:
    void ReadHeaders() {
        ArchiveReader reader(m_location);
        m_headers = reader->EnumerateHeaders();
        m_reservedHeaderSize = reader->GetReservedHeaderSize();
        m_headersRead = true;
    }

    void ReadEntries() {
        ArchiveReader reader(m_location);
        Entries entries;
        Yr::HashTable<Yr::UniString, Yr::Ref<ArchiveEntry>> index;
        while (const Yr::Ref<ArchiveEntry> entry = reader->GetNextEntry()) {
            entries.push_back(entry);
            if (!index.Contains(entry->GetName())) index.Put(entry->GetName(), entry);
        }
        // Checked and complete: only now does the file's list replace the old.
        if (!m_headersRead) {
            m_headers = reader->EnumerateHeaders();
            m_reservedHeaderSize = reader->GetReservedHeaderSize();
            m_headersRead = true;
        }
        m_entries = std::move(entries);
        m_index = std::move(index);
        m_entriesRead = true;
    }

    // The new header is built in memory first, so a set that no longer
    // fits fails before the file is touched.
    void UpdateInPlace() {
        Yr::MemoryOBinaryChannel header;
        try {
            ArchiveOBinaryChannel writer(header, m_reservedHeaderSize);
            for (const auto& [name, value] : m_headers) writer.PutHeader(name, value);
            writer.Flush();
            writer.Close();
        } catch (const Yr::YrException& e) {
            ThrowArchiveError("Failed to update archive file: failed to write archive header.", e,
                              __LINE__);
        }
        WriteAtStart(header.GetBuffer(), static_cast<Yr::UInt32>(header.GetSize()));
    }

    void WriteAtStart(const char* bytes, Yr::UInt32 size) {
        ::IO::FileSystem& fileSystem = ::IO::FileSystem::Get();
        int descriptor = -1;
        CheckFileError(
            "Failed to open archive file.",
            fileSystem.Open(PathOf(m_location), ::IO::FileSystem::OpenMode::Write, descriptor),
            kSourceUnit, __LINE__);
        ::IO::Status status = fileSystem.Lock(descriptor, ::IO::FileSystem::LockMode::Exclusive);
        if (status == ::IO::kSuccess) status = fileSystem.Write(descriptor, bytes, size);
        const char* failure = "Failed to write archive file.";
        if (status == ::IO::kSuccess) {
            status = fileSystem.FlushDescriptor(descriptor);
            failure = "Failed to flush archive file.";
        }
        fileSystem.Close(descriptor);
        CheckFileError(failure, status, kSourceUnit, __LINE__);
    }

    void UpdateByCopy() {
        ::IO::Location temporary;
        try {
            temporary = GetParentLocation(m_location);
            temporary = Concatenate(temporary, GetName(m_location) + ".updated");
        } catch (const Yr::YrException& e) {
            ThrowArchiveError(
                "Failed to update archive file: failed to get temporary file location.", e,
                __LINE__);
        }
        try {
            CopyWithHeaders(temporary);
            // The copy reaches the disk before it takes the archive's name.
            FlushToDisk(temporary);
        } catch (...) {
            DeleteQuietly(temporary);
            throw;
        }
        ExchangeWith(temporary);
        Delete(temporary);
        // Recompressed entries may have other archived sizes: read them anew.
        m_entriesRead = false;
        m_entries.clear();
        m_index.Clear();
    }

    void CopyWithHeaders(const ::IO::Location& temporary) {
        FileOBinaryChannel file(temporary, false, FileShare::None);
        Yr::BufferedOBinaryChannel buffered(file, kWriteBufferSize);
        ArchiveOBinaryChannel writer(buffered, 0);
        ArchiveReader reader(m_location);
        for (const auto& [name, value] : m_headers) writer.PutHeader(name, value);
        while (const Yr::Ref<ArchiveEntry> entry = reader->GetNextEntry()) {
            writer.PutNextEntry(entry->GetName(), entry->EnumerateHeaders(), entry->GetMethod());
            BinaryChannelUtilities::CopyAll(*reader, writer, kCopyPieceSize);
            reader->CloseEntry();
            writer.CloseEntry();
        }
        writer.Close();
    }

    void ExchangeWith(const ::IO::Location& temporary) {
        try {
            DurableExchange(m_location, temporary, RetryOptions::GetDefault());
        } catch (const Yr::YrException& e) {
            DeleteQuietly(temporary);
            ThrowArchiveError("Failed to exchange files.", e, __LINE__);
        }
    }

    static void DeleteQuietly(const ::IO::Location& location) {
        try {
            if (Exists(location)) Delete(location);
        } catch (const Yr::YrException&) {
        }
    }
};

ArchiveFile::ArchiveFile(const ::IO::Location& location)
    : m_impl(std::make_unique<Impl>(location)) {}

ArchiveFile::~ArchiveFile() = default;

Yr::UniString ArchiveFile::GetHeader(const Yr::UniString& name) {
    Yr::UniString value;
    GetHeader(name, value);
    return value;
}

bool ArchiveFile::GetHeader(const Yr::UniString& name, Yr::UniString& value) {
    CheckName(name, "Invalid header name: name is empty.", __LINE__);
    return m_impl->WithHeaders(__LINE__).m_headers.TryGet(name, value);
}

bool ArchiveFile::ConstainsHeader(const Yr::UniString& name) {
    CheckName(name, "Invalid header name: name is empty.", __LINE__);
    return m_impl->WithHeaders(__LINE__).m_headers.Contains(name);
}

const ArchiveFile::Headers& ArchiveFile::EnumerateHeaders() {
    return m_impl->WithHeaders(__LINE__).m_headers;
}

Yr::UInt32 ArchiveFile::GetHeaderCount() {
    return static_cast<Yr::UInt32>(m_impl->WithHeaders(__LINE__).m_headers.GetCount());
}

bool ArchiveFile::HasHeaders() {
    return GetHeaderCount() > 0;
}

Yr::UInt32 ArchiveFile::GetReservedHeaderSize() {
    return m_impl->WithHeaders(__LINE__).m_reservedHeaderSize;
}

void ArchiveFile::PutHeader(const Yr::UniString& name, const Yr::UniString& value) {
    CheckName(name, "Invalid header name: name is empty.", __LINE__);
    m_impl->WithHeaders(__LINE__).m_headers.Put(name, value);
    m_impl->m_updated = true;
}

void ArchiveFile::ClearHeader(const Yr::UniString& name) {
    CheckName(name, "Invalid header name: name is empty.", __LINE__);
    m_impl->WithHeaders(__LINE__).m_headers.Remove(name);
    m_impl->m_updated = true;
}

void ArchiveFile::ClearHeaders() {
    m_impl->WithHeaders(__LINE__).m_headers.Clear();
    m_impl->m_updated = true;
}

bool ArchiveFile::IsUpdated() const {
    return m_impl->m_updated;
}

Yr::Ref<ArchiveEntry> ArchiveFile::GetEntry(const Yr::UniString& name) {
    CheckName(name, "Invalid entry name: name is empty.", __LINE__);
    const Yr::Ref<ArchiveEntry>* found = m_impl->WithEntries(__LINE__).m_index.Get(name);
    return found == nullptr ? nullptr : *found;
}

bool ArchiveFile::ConstainsEntry(const Yr::UniString& name) {
    return !GetEntry(name).IsNull();
}

const ArchiveFile::Entries& ArchiveFile::EnumerateEntries() {
    return m_impl->WithEntries(__LINE__).m_entries;
}

Yr::UInt32 ArchiveFile::GetEntryCount() {
    return static_cast<Yr::UInt32>(m_impl->WithEntries(__LINE__).m_entries.size());
}

bool ArchiveFile::HasEntries() {
    return GetEntryCount() > 0;
}

Yr::Ref<Yr::IBinaryChannel> ArchiveFile::GetInputChannel(const Yr::Ref<ArchiveEntry>& entry) {
    return m_impl->GetInputChannel(entry);
}

void ArchiveFile::ExtractTo(const ::IO::Location& folder) {
    m_impl->ExtractTo(folder);
}

void ArchiveFile::Update() {
    m_impl->Update();
}

void ArchiveFile::Close() {
    m_impl->Close();
}

bool ArchiveFile::IsOpen() const {
    return !m_impl->m_closed;
}

}  // namespace Morvelan::Common::IO
