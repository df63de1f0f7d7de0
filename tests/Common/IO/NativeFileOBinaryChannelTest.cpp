#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Common/IO/AccessDeniedException.h"
#include "Common/IO/DiskFullException.h"
#include "Common/IO/FileAlreadyExistsException.h"
#include "Common/IO/NativeFileOBinaryChannel.h"
#include "Common/IO/NotFileException.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Testing::ReadFile;
using Morvelan::Testing::WriteFile;

using namespace Morvelan::Common::IO;
using ::IO::FileSystem;
using ::IO::Location;
using ::IO::Status;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ScopedTempFolder;

FileOutputOptions Options(FileCreationMode creation, FileWriteMode write, Yr::UInt32 retries = 0) {
    FileOutputOptions options;
    options.SetAccessDeniedRetryOptions(RetryOptions().SetRetryTimeout(250).SetRetryCount(retries))
        .SetCreationMode(creation)
        .SetWriteMode(write);
    return options;
}

void WriteText(NativeFileOBinaryChannel& channel, const std::string& text) {
    channel.Write(text.data(), static_cast<Yr::UInt32>(text.size()));
}

// Denies the first opens, fails writes from a chosen one on, and records
// sleeps and opens so the retry loop can be counted.
class FaultyFileSystem final : public ::IO::FileSystemWrapper {
public:
    FaultyFileSystem() : FileSystemWrapper(FileSystem::Get()) {}

    Status Open(const std::string& path, OpenMode mode, int& descriptor) override {
        ++openTries;
        if (deniedOpens > 0) {
            --deniedOpens;
            return ::IO::kFileAccessDenied;
        }
        return FileSystemWrapper::Open(path, mode, descriptor);
    }
    Status Write(int descriptor, const void* buffer, std::size_t size) override {
        if (++writes >= failingWrite) return writeFailure;
        return FileSystemWrapper::Write(descriptor, buffer, size);
    }
    void Sleep(Yr::UInt32 milliseconds) override { sleeps.push_back(milliseconds); }

    int deniedOpens = 0;
    int openTries = 0;
    int writes = 0;
    int failingWrite = 1 << 30;
    Status writeFailure = ::IO::kDiskFull;
    std::vector<Yr::UInt32> sleeps;
};

struct ModeCase {
    FileCreationMode creation;
    FileWriteMode write;
    bool existing;
    const char* expected;
};

std::string ModeName(const testing::TestParamInfo<ModeCase>& info) {
    const ModeCase& mode = info.param;
    return std::string(mode.creation == FileCreationMode::CreationNew ? "New" : "Always") +
           (mode.write == FileWriteMode::Append ? "Append" : "Truncate") +
           (mode.existing ? "Existing" : "Missing");
}

class NativeFileModeTest : public testing::TestWithParam<ModeCase> {};

TEST_P(NativeFileModeTest, WritesAsTheModesSay) {
    const ModeCase& mode = GetParam();
    const ScopedTempFolder folder;
    const std::string path = folder.PathOf("file");
    if (mode.existing) WriteFile(path, "old");
    NativeFileOBinaryChannel channel(Location::Parse(path.c_str()),
                                     Options(mode.creation, mode.write));
    WriteText(channel, "new");
    channel.Sync();
    channel.Close();
    EXPECT_EQ(ReadFile(path), mode.expected);
}

INSTANTIATE_TEST_SUITE_P(
    AllValid, NativeFileModeTest,
    testing::Values(
        ModeCase{FileCreationMode::CreationAlways, FileWriteMode::Truncate, true, "new"},
        ModeCase{FileCreationMode::CreationAlways, FileWriteMode::Truncate, false, "new"},
        ModeCase{FileCreationMode::CreationAlways, FileWriteMode::Append, true, "oldnew"},
        ModeCase{FileCreationMode::CreationAlways, FileWriteMode::Append, false, "new"},
        ModeCase{FileCreationMode::CreationNew, FileWriteMode::Truncate, false, "new"}),
    ModeName);

TEST(NativeFileOBinaryChannelTest, RefusesWhatCannotBeOpened) {
    const ScopedTempFolder folder;
    const std::string path = folder.PathOf("file");
    WriteFile(path, "old");
    FaultyFileSystem fileSystem;
    const ::IO::ScopedFileSystem scope(fileSystem);
    const Location location = Location::Parse(path.c_str());
    ExpectYrException<FileAlreadyExistsException>(
        [&] {
            NativeFileOBinaryChannel(
                location, Options(FileCreationMode::CreationNew, FileWriteMode::Truncate, 5));
        },
        ("File already exists: '" + path + "'.").c_str(), Yr::kIOErrorCode);
    ExpectYrException<Yr::IllegalArgumentException>(
        [&] {
            NativeFileOBinaryChannel(location,
                                     Options(FileCreationMode::CreationNew, FileWriteMode::Append));
        },
        "Invalid file output options: options are not valid.", Yr::kIllegalArgumentErrorCode);
    ExpectYrException<NotFileException>(
        [&] {
            NativeFileOBinaryChannel(Location::Parse(folder.GetPath().c_str()),
                                     FileOutputOptions());
        },
        ("Not a file: '" + folder.GetPath() + "'.").c_str(), Yr::kIOErrorCode);
    EXPECT_EQ(fileSystem.openTries, 0);
    EXPECT_TRUE(fileSystem.sleeps.empty());
    EXPECT_EQ(ReadFile(path), "old");
}

struct RetryCase {
    int deniedOpens;
    Yr::UInt32 retryCount;
    bool opens;
    int expectedTries;
};

std::string RetryName(const testing::TestParamInfo<RetryCase>& info) {
    return "Denied" + std::to_string(info.param.deniedOpens) + "Retries" +
           std::to_string(info.param.retryCount);
}

class NativeFileRetryTest : public testing::TestWithParam<RetryCase> {};

TEST_P(NativeFileRetryTest, RetriesAccessDeniedWithSleeps) {
    const RetryCase& retry = GetParam();
    const ScopedTempFolder folder;
    const std::string path = folder.PathOf("file");
    FaultyFileSystem fileSystem;
    fileSystem.deniedOpens = retry.deniedOpens;
    const ::IO::ScopedFileSystem scope(fileSystem);
    const Location location = Location::Parse(path.c_str());
    const FileOutputOptions options =
        Options(FileCreationMode::CreationAlways, FileWriteMode::Truncate, retry.retryCount);
    if (retry.opens)
        NativeFileOBinaryChannel(location, options).Close();
    else
        ExpectYrException<AccessDeniedException>(
            [&] { NativeFileOBinaryChannel(location, options); },
            ("Access is denied to file: '" + path + "'.").c_str(), Yr::kIOErrorCode);
    EXPECT_EQ(fileSystem.openTries, retry.expectedTries);
    EXPECT_EQ(fileSystem.sleeps, std::vector<Yr::UInt32>(retry.expectedTries - 1, 250));
}

INSTANTIATE_TEST_SUITE_P(Counts, NativeFileRetryTest,
                         testing::Values(RetryCase{0, 0, true, 1}, RetryCase{1, 0, false, 1},
                                         RetryCase{2, 5, true, 3}, RetryCase{9, 2, false, 3}),
                         RetryName);

TEST(NativeFileOBinaryChannelTest, ExclusiveHolderKeepsOthersOutUntilClosed) {
    const ScopedTempFolder folder;
    const Location location = Location::Parse(folder.PathOf("file").c_str());
    NativeFileOBinaryChannel holder(location, false, FileShare::None, 250, 0);
    EXPECT_THROW(NativeFileOBinaryChannel(location, true, FileShare::None, 250, 0),
                 AccessDeniedException);
    EXPECT_THROW(NativeFileOBinaryChannel(location, true, FileShare::Read, 250, 0),
                 AccessDeniedException);
    holder.Close();
    NativeFileOBinaryChannel(location, true, FileShare::None, 250, 0).Close();
}

TEST(NativeFileOBinaryChannelTest, WriteFailuresLeaveTheChannelOpen) {
    const ScopedTempFolder folder;
    const std::string path = folder.PathOf("file");
    FaultyFileSystem fileSystem;
    fileSystem.failingWrite = 2;
    const ::IO::ScopedFileSystem scope(fileSystem);
    NativeFileOBinaryChannel channel(Location::Parse(path.c_str()), FileOutputOptions());
    WriteText(channel, "kept");
    ExpectYrException<DiskFullException>([&] { WriteText(channel, "lost"); }, "Disk is full.",
                                         Yr::kIOErrorCode);
    fileSystem.writeFailure = ::IO::kSystemErrorBase | EIO;
    try {
        WriteText(channel, "lost");
        ADD_FAILURE() << "write did not fail";
    } catch (const Yr::IOException& e) {
        EXPECT_STREQ(e.what(),
                     ("Failed to write file: '" + path + "'. Failed to write file.").c_str());
        ASSERT_NE(e.GetCause(), nullptr);
        EXPECT_STREQ(e.GetCause()->what(), "Write is failed. (Error code: 5)");
    }
    channel.Close();
    EXPECT_EQ(ReadFile(path), "kept");
}

TEST(NativeFileOBinaryChannelTest, ClosedChannelRefusesEveryCall) {
    const ScopedTempFolder folder;
    NativeFileOBinaryChannel channel(Location::Parse(folder.PathOf("file").c_str()),
                                     FileOutputOptions());
    channel.Close();
    channel.Close();
    const char* closed = "Native file output channel is closed.";
    ExpectYrException<Yr::IOException>([&] { WriteText(channel, "x"); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { channel.Flush(); }, closed, Yr::kIOErrorCode);
    ExpectYrException<Yr::IOException>([&] { channel.Sync(); }, closed, Yr::kIOErrorCode);
}

TEST(NativeFileOBinaryChannelTest, AdoptsAnOpenDescriptor) {
    const ScopedTempFolder folder;
    const std::string path = folder.PathOf("file");
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(descriptor, 0);
    NativeFileOBinaryChannel channel(descriptor);
    EXPECT_EQ(channel.GetFD(), descriptor);
    WriteText(channel, "adopted");
    channel.Close();
    EXPECT_EQ(ReadFile(path), "adopted");
    EXPECT_EQ(::close(descriptor), -1);
    ExpectYrException<Yr::IllegalArgumentException>([] { NativeFileOBinaryChannel(-1); },
                                                    "Invalid file descriptor.",
                                                    Yr::kIllegalArgumentErrorCode);
}

}  // namespace
