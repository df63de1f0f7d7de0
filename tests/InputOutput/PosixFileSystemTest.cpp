#include "InputOutput/Posix/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using ::IO::FileSystem;
using Mode = ::IO::FileSystem::OpenMode;

std::string ReadAll(FileSystem& fileSystem, const std::string& path) {
    int descriptor = -1;
    EXPECT_EQ(fileSystem.Open(path, Mode::Read, descriptor), ::IO::kSuccess);
    std::string bytes;
    char buffer[1000];
    std::size_t count = 0;
    do {
        EXPECT_EQ(fileSystem.Read(descriptor, buffer, sizeof buffer, count), ::IO::kSuccess);
        bytes.append(buffer, count);
    } while (count > 0);
    fileSystem.Close(descriptor);
    return bytes;
}

// Fails the nth Write (counted from 1) with a full disk; forwards the rest.
class FailsNthWrite : public ::IO::FileSystemWrapper {
public:
    FailsNthWrite(FileSystem& target, int failingWrite)
        : FileSystemWrapper(target), m_remaining(failingWrite) {}
    ::IO::Status Write(int descriptor, const void* buffer, std::size_t size) override {
        if (--m_remaining == 0) return ::IO::kDiskFull;
        return FileSystemWrapper::Write(descriptor, buffer, size);
    }

private:
    int m_remaining;
};

TEST(PosixFileSystemTest, WrittenBytesReadBackUnchanged) {
    Morvelan::Testing::ScopedTempFolder folder;
    ::IO::PosixFileSystem fileSystem;
    // Big enough for the kernel to take it in several writes.
    std::string bytes(3 << 20, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 131 + i / 7);

    int descriptor = -1;
    ASSERT_EQ(fileSystem.Open(folder.PathOf("f"), Mode::WriteNew, descriptor), ::IO::kSuccess);
    EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
    ASSERT_EQ(fileSystem.Write(descriptor, bytes.data(), bytes.size()), ::IO::kSuccess);
    ASSERT_EQ(fileSystem.Close(descriptor), ::IO::kSuccess);
    EXPECT_TRUE(ReadAll(fileSystem, folder.PathOf("f")) == bytes);
}

TEST(PosixFileSystemTest, FailuresBecomeStatuses) {
    Morvelan::Testing::ScopedTempFolder folder;
    ::IO::PosixFileSystem fileSystem;
    int descriptor = -1;
    ASSERT_EQ(fileSystem.Open(folder.PathOf("file"), Mode::WriteNew, descriptor), ::IO::kSuccess);
    fileSystem.Close(descriptor);
    const struct {
        std::string path;
        Mode mode;
        ::IO::Status expected;
    } kCases[] = {
        {folder.PathOf("missing"), Mode::Read, ::IO::kFileNotFound},
        {folder.PathOf("missing/file"), Mode::WriteNew, ::IO::kFileNotFound},
        {folder.PathOf("file/inner"), Mode::Read, ::IO::kNotFolder},
        {folder.GetPath(), Mode::WriteTruncate, ::IO::kNotFile},
        {folder.PathOf("file"), Mode::WriteNew, ::IO::kSystemErrorBase | EEXIST},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.path);
        descriptor = -1;
        EXPECT_EQ(fileSystem.Open(c.path, c.mode, descriptor), c.expected);
        EXPECT_EQ(descriptor, -1);
    }

    char buffer[4] = {};
    std::size_t count = 0;
    EXPECT_EQ(fileSystem.Read(-1, buffer, sizeof buffer, count), ::IO::kSystemErrorBase | EBADF);
    EXPECT_EQ(fileSystem.Close(-1), ::IO::kSystemErrorBase | EBADF);
    if (fileSystem.Open("/dev/full", Mode::WriteTruncate, descriptor) == ::IO::kSuccess) {
        EXPECT_EQ(fileSystem.Write(descriptor, buffer, 1), ::IO::kDiskFull);
        fileSystem.Close(descriptor);
    }
}

TEST(PosixFileSystemTest, PermissionDeniedIsAccessDenied) {
    if (::geteuid() == 0) GTEST_SKIP() << "root ignores file permissions";
    Morvelan::Testing::ScopedTempFolder folder;
    ::IO::PosixFileSystem fileSystem;
    int descriptor = -1;
    ASSERT_EQ(fileSystem.Open(folder.PathOf("f"), Mode::WriteNew, descriptor), ::IO::kSuccess);
    fileSystem.Close(descriptor);
    ASSERT_EQ(::chmod(folder.PathOf("f").c_str(), 0), 0);
    EXPECT_EQ(fileSystem.Open(folder.PathOf("f"), Mode::Read, descriptor), ::IO::kFileAccessDenied);
}

TEST(PosixFileSystemTest, ScopedWrapperFailsTheChosenWriteAndIsUndone) {
    Morvelan::Testing::ScopedTempFolder folder;
    FileSystem& original = FileSystem::Get();
    FailsNthWrite outer(original, 0);
    FailsNthWrite failing(original, 2);
    {
        ::IO::ScopedFileSystem outerScope(outer);
        {
            ::IO::ScopedFileSystem scope(failing);
            FileSystem& fileSystem = FileSystem::Get();
            int descriptor = -1;
            ASSERT_EQ(fileSystem.Open(folder.PathOf("f"), Mode::WriteNew, descriptor),
                      ::IO::kSuccess);
            EXPECT_EQ(fileSystem.Write(descriptor, "one", 3), ::IO::kSuccess);
            EXPECT_EQ(fileSystem.Write(descriptor, "two", 3), ::IO::kDiskFull);
            EXPECT_EQ(fileSystem.Write(descriptor, "three", 5), ::IO::kSuccess);
            ASSERT_EQ(fileSystem.Close(descriptor), ::IO::kSuccess);
        }
        EXPECT_EQ(&FileSystem::Get(), &outer);
    }
    EXPECT_EQ(&FileSystem::Get(), &original);
    EXPECT_EQ(ReadAll(original, folder.PathOf("f")), "onethree");
}

}  // namespace
