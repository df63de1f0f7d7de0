#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Common/IO/ArchiveEntry.h"
#include "Common/IO/ArchiveFile.h"
#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using ::IO::FileSystem;
using ::IO::Status;
using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveFile;
using Morvelan::Common::IO::ArchiveIBinaryChannel;
using Morvelan::Common::IO::ArchiveOBinaryChannel;
using Morvelan::Common::IO::FileIBinaryChannel;
using Morvelan::Common::IO::FileOBinaryChannel;
using Morvelan::Common::IO::FileShare;
using Morvelan::Testing::ScopedTempFolder;

using Strings = std::map<std::string, std::string>;

struct Entry {
    std::string name;
    ArchiveEntry::Method method;
    Strings headers;
    std::string data;

    bool operator==(const Entry&) const = default;
};

struct Contents {
    Strings headers;
    std::vector<Entry> entries;
};

const Strings kOldHeaders = {{"creator", "crash test"}, {"version", "1"}};
const Strings kNewHeaders = {
    {"creator", "crash test"}, {"version", "2"}, {"note", std::string(300, 'n')}};

constexpr int kEntriesPerMethod = 4;
constexpr std::size_t kWritePieceSize = 4096;

// Half text, half noise, so every method has work to do and none shrinks
// an entry to nothing.
std::string EntryData(int index) {
    std::mt19937 generator(static_cast<unsigned>(index));
    std::string data;
    const std::size_t size = 8000 + 3000 * static_cast<std::size_t>(index);
    while (data.size() < size / 2) data += "entry " + std::to_string(index) + " line\n";
    while (data.size() < size) data += static_cast<char>(generator());
    return data;
}

std::vector<Entry> OriginalEntries() {
    std::vector<Entry> entries;
    const ArchiveEntry::Method methods[] = {ArchiveEntry::Stored, ArchiveEntry::Deflated,
                                            ArchiveEntry::QuickLZ};
    int index = 0;
    for (ArchiveEntry::Method method : methods)
        for (int i = 0; i < kEntriesPerMethod; ++i, ++index)
            entries.push_back({"folder/entry" + std::to_string(index),
                               method,
                               {{"index", std::to_string(index)}},
                               EntryData(index)});
    return entries;
}

Strings ToStrings(const ArchiveEntry::Headers& headers) {
    Strings strings;
    for (const auto& [name, value] : headers) strings[name.ToUtf8()] = value.ToUtf8();
    return strings;
}

void WriteOriginal(const std::string& path) {
    FileOBinaryChannel file(::IO::Location::Parse(path.c_str()), false, FileShare::None);
    ArchiveOBinaryChannel archive(file, 0);
    for (const auto& [name, value] : kOldHeaders) archive.PutHeader(name.c_str(), value.c_str());
    for (const Entry& entry : OriginalEntries()) {
        ArchiveEntry::Headers headers;
        for (const auto& [name, value] : entry.headers) headers.Put(name.c_str(), value.c_str());
        archive.PutNextEntry(entry.name.c_str(), headers, entry.method);
        archive.Write(entry.data.data(), static_cast<Yr::UInt32>(entry.data.size()));
    }
    archive.Close();
}

// Every header and entry, read to the end; each entry's trailer is checked
// on leaving it.
Contents ReadArchive(const std::string& path) {
    FileIBinaryChannel file(::IO::Location::Parse(path.c_str()), FileShare::Read);
    ArchiveIBinaryChannel archive(file);
    Contents contents;
    contents.headers = ToStrings(archive.EnumerateHeaders());
    while (const Yr::Ref<ArchiveEntry> entry = archive.GetNextEntry()) {
        Entry read{entry->GetName().ToUtf8(),
                   entry->GetMethod(),
                   ToStrings(entry->EnumerateHeaders()),
                   {}};
        char buffer[4096];
        while (const Yr::UInt32 count = archive.Read(buffer, sizeof buffer, Yr::kReadSome))
            read.data.append(buffer, count);
        contents.entries.push_back(std::move(read));
    }
    archive.Close();
    return contents;
}

// Counts every file-system call (and write piece) and dies like a crashed process just before
// the chosen one; 0 never kills.
class KillingFileSystem : public ::IO::FileSystemWrapper {
public:
    using Path = const std::string&;

    explicit KillingFileSystem(int killAt)
        : FileSystemWrapper(FileSystem::Get()), m_killAt(killAt) {}

    int GetCallCount() const { return m_calls; }

    Status Open(Path path, OpenMode mode, int& descriptor) override {
        return Count(), FileSystemWrapper::Open(path, mode, descriptor);
    }
    Status Read(int descriptor, void* buffer, std::size_t size, std::size_t& count) override {
        return Count(), FileSystemWrapper::Read(descriptor, buffer, size, count);
    }
    // In pieces, each a point of its own, so kills also leave the copy cut
    // inside one large write.
    Status Write(int descriptor, const void* buffer, std::size_t size) override {
        const char* bytes = static_cast<const char*>(buffer);
        do {
            const std::size_t piece = std::min(size, kWritePieceSize);
            Count();
            if (const Status status = FileSystemWrapper::Write(descriptor, bytes, piece))
                return status;
            bytes += piece;
            size -= piece;
        } while (size > 0);
        return ::IO::kSuccess;
    }
    Status Close(int descriptor) override { return Count(), FileSystemWrapper::Close(descriptor); }
    Status Seek(int descriptor, Yr::Int64 offset, SeekOrigin origin,
                Yr::UInt64& position) override {
        return Count(), FileSystemWrapper::Seek(descriptor, offset, origin, position);
    }
    Status GetSize(int descriptor, Yr::UInt64& size) override {
        return Count(), FileSystemWrapper::GetSize(descriptor, size);
    }
    Status Truncate(int descriptor, Yr::UInt64 size) override {
        return Count(), FileSystemWrapper::Truncate(descriptor, size);
    }
    Status Lock(int descriptor, LockMode mode) override {
        return Count(), FileSystemWrapper::Lock(descriptor, mode);
    }
    Status GetEntryInfo(Path path, EntryInfo& info) override {
        return Count(), FileSystemWrapper::GetEntryInfo(path, info);
    }
    Status ResolvePath(Path path, std::string& resolved) override {
        return Count(), FileSystemWrapper::ResolvePath(path, resolved);
    }
    Status CreateFolder(Path path) override {
        return Count(), FileSystemWrapper::CreateFolder(path);
    }
    Status RemoveFile(Path path) override { return Count(), FileSystemWrapper::RemoveFile(path); }
    Status RemoveFolder(Path path) override {
        return Count(), FileSystemWrapper::RemoveFolder(path);
    }
    Status Rename(Path source, Path target) override {
        return Count(), FileSystemWrapper::Rename(source, target);
    }
    Status Exchange(Path first, Path second) override {
        return Count(), FileSystemWrapper::Exchange(first, second);
    }
    Status CopyFile(Path source, Path target) override {
        return Count(), FileSystemWrapper::CopyFile(source, target);
    }
    Status FlushFile(Path path) override { return Count(), FileSystemWrapper::FlushFile(path); }
    Status FlushDescriptor(int descriptor) override {
        return Count(), FileSystemWrapper::FlushDescriptor(descriptor);
    }
    Status FlushFolder(Path path) override { return Count(), FileSystemWrapper::FlushFolder(path); }
    Status ListFolder(Path path, std::vector<std::string>& names) override {
        return Count(), FileSystemWrapper::ListFolder(path, names);
    }

private:
    void Count() {
        if (++m_calls == m_killAt) raise(SIGKILL);
    }

    int m_killAt;
    int m_calls = 0;
};

// The headers are changed before the killer is installed, so every kill
// lands inside the update itself.
void UpdateArchive(const std::string& path, KillingFileSystem& killer) {
    ArchiveFile archive(::IO::Location::Parse(path.c_str()));
    for (const auto& [name, value] : kNewHeaders) archive.PutHeader(name.c_str(), value.c_str());
    ::IO::ScopedFileSystem scope(killer);
    archive.Update();
    archive.Close();
}

int CountCallsOfUpdate() {
    ScopedTempFolder folder;
    WriteOriginal(folder.PathOf("archive.mar"));
    KillingFileSystem counter(0);
    UpdateArchive(folder.PathOf("archive.mar"), counter);
    return counter.GetCallCount();
}

// The child's wait status.
int RunUpdateKilledAt(const std::string& path, int killAt) {
    const pid_t child = fork();
    if (child == 0) {
        try {
            KillingFileSystem killer(killAt);
            UpdateArchive(path, killer);
        } catch (...) {
            _exit(1);
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

std::vector<std::string> FolderNames(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}

TEST(ArchiveFileCrashTest, KilledUpdateLeavesOneWholeArchive) {
    const int callCount = CountCallsOfUpdate();
    RecordProperty("killPoints", callCount);
    ASSERT_GE(callCount, 50);
    const std::vector<Entry> original = OriginalEntries();
    int killsWithOldHeaders = 0;
    int killsWithNewHeaders = 0;
    // One point past the last call lets the update run to its end.
    for (int killAt = 1; killAt <= callCount + 1; ++killAt) {
        SCOPED_TRACE("kill point " + std::to_string(killAt));
        ScopedTempFolder folder;
        const std::string path = folder.PathOf("archive.mar");
        WriteOriginal(path);
        const int status = RunUpdateKilledAt(path, killAt);
        const bool finished = killAt > callCount;
        if (finished)
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        else
            ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;

        for (const std::string& name : FolderNames(folder.GetPath()))
            EXPECT_TRUE(name == "archive.mar" || (!finished && name == "archive.mar.updated"))
                << name;
        Contents contents;
        try {
            contents = ReadArchive(path);
        } catch (...) {
            ADD_FAILURE() << "the archive no longer reads";
            continue;
        }
        EXPECT_TRUE(contents.entries == original);
        if (contents.headers == kOldHeaders)
            ++killsWithOldHeaders;
        else if (contents.headers == kNewHeaders)
            ++killsWithNewHeaders;
        else
            ADD_FAILURE() << "the headers are neither the old nor the new ones";
        if (finished) {
            EXPECT_EQ(contents.headers, kNewHeaders);
        }
    }
    // The points must fall on both sides of the exchange.
    EXPECT_GT(killsWithOldHeaders, 0);
    EXPECT_GT(killsWithNewHeaders, 1);
}

}  // namespace
