#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "Common/IO/UpdateFileTransaction.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using ::IO::FileSystem;
using ::IO::Status;
using Morvelan::Common::IO::UpdateFileTransaction;
using Morvelan::Testing::ScopedTempFolder;

constexpr int kWriteSteps = 48;
constexpr std::size_t kStepSize = 64;
const std::string kOldBytes("old\0\xff bytes that must never get lost\n", 37);

std::string NewBytes() {
    std::string bytes;
    for (int step = 0; step < kWriteSteps; ++step)
        bytes += std::string(kStepSize, static_cast<char>('a' + step % 26));
    return bytes;
}

std::optional<std::string> ReadFile(const std::string& path) {
    if (!std::filesystem::exists(path)) return std::nullopt;
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

// Counts the file-system calls and dies like a crashed process just before
// the chosen one; 0 never kills.
class KillingFileSystem : public ::IO::FileSystemWrapper {
public:
    explicit KillingFileSystem(int killAt)
        : FileSystemWrapper(FileSystem::Get()), m_killAt(killAt) {}

    int GetCallCount() const { return m_calls; }

    Status GetEntryInfo(const std::string& path, EntryInfo& info) override {
        Count();
        return FileSystemWrapper::GetEntryInfo(path, info);
    }
    Status Rename(const std::string& source, const std::string& target) override {
        Count();
        return FileSystemWrapper::Rename(source, target);
    }
    Status RemoveFile(const std::string& path) override {
        Count();
        return FileSystemWrapper::RemoveFile(path);
    }
    Status Open(const std::string& path, OpenMode mode, int& descriptor) override {
        Count();
        return FileSystemWrapper::Open(path, mode, descriptor);
    }
    Status Write(int descriptor, const void* buffer, std::size_t size) override {
        Count();
        return FileSystemWrapper::Write(descriptor, buffer, size);
    }
    Status Close(int descriptor) override {
        Count();
        return FileSystemWrapper::Close(descriptor);
    }

private:
    void Count() {
        if (++m_calls == m_killAt) raise(SIGKILL);
    }

    int m_killAt;
    int m_calls = 0;
};

// The caller's side of an update: move the old file aside, write the new one
// piece by piece, commit.
void UpdateFile(const std::string& path, const std::string& bytes) {
    UpdateFileTransaction transaction(::IO::Location::Parse(path.c_str()));
    FileSystem& fileSystem = FileSystem::Get();
    int descriptor = -1;
    if (fileSystem.Open(path, FileSystem::OpenMode::WriteNew, descriptor))
        throw std::runtime_error("write of new file failed");
    for (std::size_t offset = 0; offset < bytes.size(); offset += kStepSize)
        if (fileSystem.Write(descriptor, bytes.data() + offset, kStepSize))
            throw std::runtime_error("write of new file failed");
    if (fileSystem.Close(descriptor)) throw std::runtime_error("write of new file failed");
    transaction.Commit();
}

int CountCallsOfUpdate() {
    ScopedTempFolder folder;
    std::ofstream(folder.PathOf("data"), std::ios::binary) << kOldBytes;
    KillingFileSystem counter(0);
    ::IO::ScopedFileSystem scope(counter);
    UpdateFile(folder.PathOf("data"), NewBytes());
    return counter.GetCallCount();
}

// The child's wait status.
int RunUpdateKilledAt(const std::string& path, int killAt) {
    const pid_t child = fork();
    if (child == 0) {
        KillingFileSystem killer(killAt);
        ::IO::ScopedFileSystem scope(killer);
        try {
            UpdateFile(path, NewBytes());
        } catch (...) {
            _exit(1);
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(FileTransactionCrashTest, KilledUpdateNeverLosesTheOriginal) {
    const int callCount = CountCallsOfUpdate();
    ASSERT_GE(callCount, 50);
    int killsWithOnlyBackup = 0;
    // One point past the last call lets the update run to its end.
    for (int killAt = 1; killAt <= callCount + 1; ++killAt) {
        ScopedTempFolder folder;
        const std::string data = folder.PathOf("data");
        std::ofstream(data, std::ios::binary) << kOldBytes;
        const int status = RunUpdateKilledAt(data, killAt);
        const bool finished = killAt > callCount;
        if (finished)
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        else
            ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << killAt;
        const std::optional<std::string> file = ReadFile(data);
        const std::optional<std::string> backup = ReadFile(folder.PathOf("data.bak"));
        const bool oldKept = file == kOldBytes || backup == kOldBytes;
        EXPECT_TRUE(oldKept || file == NewBytes()) << "kill point " << killAt;
        if (finished) {
            EXPECT_FALSE(backup.has_value());
        }
        if (backup == kOldBytes && file != NewBytes()) ++killsWithOnlyBackup;
    }
    // The points must reach the window where the original lives only as backup.
    EXPECT_GE(killsWithOnlyBackup, kWriteSteps);
}

}  // namespace
