#include "InputOutput/Posix/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using ::IO::FileSystem;
using Mode = ::IO::FileSystem::OpenMode;

// Fails the nth Write (counted from 1) with a full disk; forwards the rest.
class FailsNthWrite : public ::IO::FileSystemWrapper {
public:
    FailsNthWrite(FileSystem& target, int failingWrite)
        : FileSystemWrapper(target), m_remaining(failingWrite) {}
    ::IO::Status Write(int descriptor, const void* buffer, std::size_t size) override {
        return --m_remaining == 0 ? ::IO::kDiskFull
                                  : FileSystemWrapper::Write(descriptor, buffer, size);
    }

private:
    int m_remaining;
};

TEST(PosixFileSystemTest, ScopedWrapperFailsTheChosenWriteAndIsUndone) {
    Morvelan::Testing::ScopedTempFolder folder;
    FileSystem& original = FileSystem::Get();
    FailsNthWrite failing(original, 2);
    int descriptor = -1;
    {
        ::IO::ScopedFileSystem scope(failing);
        FileSystem& fileSystem = FileSystem::Get();
        ASSERT_EQ(fileSystem.Open(folder.PathOf("f"), Mode::WriteNew, descriptor), ::IO::kSuccess);
        EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
        EXPECT_EQ(fileSystem.Write(descriptor, "one", 3), ::IO::kSuccess);
        EXPECT_EQ(fileSystem.Write(descriptor, "two", 3), ::IO::kDiskFull);
        EXPECT_EQ(fileSystem.Write(descriptor, "three", 5), ::IO::kSuccess);
        EXPECT_EQ(fileSystem.Close(descriptor), ::IO::kSuccess);
    }
    EXPECT_EQ(&FileSystem::Get(), &original);
    ASSERT_EQ(original.Open(folder.PathOf("f"), Mode::Read, descriptor), ::IO::kSuccess);
    char buffer[16];
    std::size_t count = 0;
    EXPECT_EQ(original.Read(descriptor, buffer, sizeof buffer, count), ::IO::kSuccess);
    EXPECT_EQ(std::string(buffer, count), "onethree");  // the failed write left nothing
    original.Close(descriptor);
}

TEST(PosixFileSystemTest, FailuresBecomeStatuses) {
    Morvelan::Testing::ScopedTempFolder folder;
    ::IO::PosixFileSystem fileSystem;
    int descriptor = -1;
    ASSERT_EQ(fileSystem.Open(folder.PathOf("file"), Mode::WriteNew, descriptor), ::IO::kSuccess);
    fileSystem.Close(descriptor);
    const std::tuple<std::string, Mode, ::IO::Status> kCases[] = {
        {folder.PathOf("missing"), Mode::Read, ::IO::kFileNotFound},
        {folder.PathOf("file/inner"), Mode::Read, ::IO::kNotFolder},
        {folder.GetPath(), Mode::WriteTruncate, ::IO::kNotFile},
        {folder.PathOf("file"), Mode::WriteNew, ::IO::kSystemErrorBase | EEXIST},
    };
    for (const auto& [path, mode, expected] : kCases) {
        descriptor = -1;
        EXPECT_EQ(fileSystem.Open(path, mode, descriptor), expected) << path;
        EXPECT_EQ(descriptor, -1);
    }
    EXPECT_EQ(fileSystem.Close(-1), ::IO::kSystemErrorBase | EBADF);
    if (fileSystem.Open("/dev/full", Mode::WriteTruncate, descriptor) == ::IO::kSuccess) {
        EXPECT_EQ(fileSystem.Write(descriptor, "x", 1), ::IO::kDiskFull);
        fileSystem.Close(descriptor);
    }
    ASSERT_EQ(::chmod(folder.PathOf("file").c_str(), 0), 0);
    // Root ignores permissions, so this open runs in a child that gives them up.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) std::_Exit(2);
            const auto status = fileSystem.Open(folder.PathOf("file"), Mode::Read, descriptor);
            std::_Exit(status == ::IO::kFileAccessDenied ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
