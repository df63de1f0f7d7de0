#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "Common/IO/AccessDeniedException.h"
#include "Common/IO/DiskFullException.h"
#include "Common/IO/FileIBinaryChannel.h"
#include "Common/IO/FileIBinaryChannelFactory.h"
#include "Common/IO/FileNotFoundException.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "Common/IO/FileOBinaryChannelFactory.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Testing::At;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::WriteFile;

using namespace Morvelan::Common::IO;
using ::IO::FileSystem;
using ::IO::Location;
using ::IO::Status;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ScopedTempFolder;

bool IsThere(const std::string& path) {
    return std::ifstream(path).good();
}

// Fails the chosen call kind from the given call on, and counts opens and
// closes so leaked descriptors show.
class FaultyFileSystem final : public ::IO::FileSystemWrapper {
public:
    FaultyFileSystem() : FileSystemWrapper(FileSystem::Get()) {}

    Status Open(const std::string& path, OpenMode mode, int& descriptor) override {
        const Status status = FileSystemWrapper::Open(path, mode, descriptor);
        if (status == ::IO::kSuccess) ++openCount;
        return status;
    }
    Status Close(int descriptor) override {
        ++closeCount;
        return FileSystemWrapper::Close(descriptor);
    }
    Status Write(int descriptor, const void* buffer, std::size_t size) override {
        if (++writeCalls >= failingWrite) return writeFailure;
        return FileSystemWrapper::Write(descriptor, buffer, size);
    }
    Status Lock(int descriptor, LockMode mode) override {
        if (lockFailure != ::IO::kSuccess) return lockFailure;
        return FileSystemWrapper::Lock(descriptor, mode);
    }

    int openCount = 0;
    int closeCount = 0;
    int writeCalls = 0;
    int failingWrite = 1 << 30;
    Status writeFailure = ::IO::kSuccess;
    Status lockFailure = ::IO::kSuccess;
};

TEST(FileChannelTest, ReadsAFileInPiecesThenReportsTheEnd) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("ten"), "0123456789");
    FileIBinaryChannel input(At(folder.PathOf("ten")), FileShare::Read);
    EXPECT_EQ(input.GetAvailable(), 10u);
    char buffer[4];
    std::string read;
    for (const Yr::UInt32 expected : {4u, 4u, 2u, 0u}) {
        const Yr::UInt32 count = input.Read(buffer, sizeof buffer, Yr::kReadSome);
        EXPECT_EQ(count, expected);
        read.append(buffer, count);
    }
    EXPECT_EQ(read, "0123456789");
    EXPECT_EQ(input.GetAvailable(), 0u);
}

TEST(FileChannelTest, ReportsAMissingFileToRead) {
    ScopedTempFolder folder;
    const std::string path = folder.PathOf("absent");
    const std::string message = "Failed to create file binary input channel for location: '" +
                                path + "'. Failed to open file. File is not found.";
    ExpectYrException<FileNotFoundException>([&] { FileIBinaryChannel(At(path), FileShare::Read); },
                                             message.c_str(), Yr::kIOErrorCode);
}

// Which second opener the share of the first one lets in.
TEST(FileChannelTest, SharesDecideWhoElseMayOpen) {
    struct Case {
        FileShare first;
        FileShare second;
        bool admitted;
    };
    const Case cases[] = {
        {FileShare::None, FileShare::Read, false},
        {FileShare::Read, FileShare::None, false},
        {FileShare::Read, FileShare::Read, true},
        {FileShare::None, FileShare::ReadWrite, true},
        {FileShare::ReadWrite, FileShare::None, true},
    };
    ScopedTempFolder folder;
    const Location file = At(folder.PathOf("shared"));
    WriteFile(folder.PathOf("shared"), "x");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.first.ToString().ToUtf8() + " then " + c.second.ToString().ToUtf8());
        FileIBinaryChannel first(file, c.first);
        if (c.admitted)
            EXPECT_NO_THROW(FileIBinaryChannel(file, c.second));
        else
            EXPECT_THROW(FileIBinaryChannel(file, c.second), AccessDeniedException);
    }
}

TEST(FileChannelTest, OutputExcludesReadersAndReleasesOnClose) {
    ScopedTempFolder folder;
    const Location file = At(folder.PathOf("out"));
    FileOBinaryChannel output(file, false, FileShare::None);
    EXPECT_THROW(FileIBinaryChannel(file, FileShare::Read), AccessDeniedException);
    EXPECT_THROW(FileOBinaryChannel(file, true, FileShare::None), AccessDeniedException);
    output.Close();
    EXPECT_NO_THROW(FileIBinaryChannel(file, FileShare::None));
}

TEST(FileChannelTest, RefusedLockLeavesNoDescriptorOpen) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("locked"), "x");
    FaultyFileSystem faulty;
    faulty.lockFailure = ::IO::kFileAccessDenied;
    ::IO::ScopedFileSystem scope(faulty);
    EXPECT_THROW(FileIBinaryChannel(At(folder.PathOf("locked")), FileShare::None),
                 AccessDeniedException);
    EXPECT_THROW(FileOBinaryChannel(At(folder.PathOf("locked")), false, FileShare::None),
                 AccessDeniedException);
    EXPECT_EQ(faulty.openCount, 2);
    EXPECT_EQ(faulty.closeCount, 2);
    EXPECT_EQ(ReadFile(folder.PathOf("locked")), "x");
}

TEST(FileChannelTest, OutputRefusesSharingAndCreatesNothing) {
    ScopedTempFolder folder;
    for (const FileShare share : {FileShare::Read, FileShare::ReadWrite, FileShare::Write}) {
        ExpectYrException<Yr::IllegalArgumentException>(
            [&] { FileOBinaryChannel(At(folder.PathOf("shared")), false, share); },
            "Invalid file share: file share is not supported yet.", Yr::kIllegalArgumentErrorCode);
    }
    EXPECT_FALSE(IsThere(folder.PathOf("shared")));
}

// Creation of a missing file, and truncating or appending to an existing one.
TEST(FileChannelTest, WriteModesTruncateOrAppend) {
    struct Case {
        const char* before;  // null: no file yet
        bool append;
        const char* after;
    };
    const Case cases[] = {
        {nullptr, false, "new"},
        {nullptr, true, "new"},
        {"old", false, "new"},
        {"old", true, "oldnew"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.before ? c.before : "missing") + (c.append ? " append" : ""));
        ScopedTempFolder folder;
        const std::string path = folder.PathOf("file");
        if (c.before) WriteFile(path, c.before);
        FileOBinaryChannel output(At(path), c.append, FileShare::None);
        output.Write("new", 3);
        output.Flush();
        output.Close();
        EXPECT_EQ(ReadFile(path), c.after);
    }
}

TEST(FileChannelTest, DiskFullMidWriteKeepsTheChannelClosable) {
    ScopedTempFolder folder;
    const std::string path = folder.PathOf("full");
    FaultyFileSystem faulty;
    faulty.failingWrite = 2;
    faulty.writeFailure = ::IO::kDiskFull;
    ::IO::ScopedFileSystem scope(faulty);
    FileOBinaryChannel output(At(path), false, FileShare::None);
    output.Write("first", 5);
    const std::string message =
        "Failed to write to file binary output channel for location: '" + path + "'. Disk is full.";
    ExpectYrException<DiskFullException>([&] { output.Write("second", 6); }, message.c_str(),
                                         Yr::kIOErrorCode);
    output.Close();
    EXPECT_EQ(faulty.closeCount, faulty.openCount);
    EXPECT_EQ(ReadFile(path), "first");
}

// Argument checks come first, so a closed channel still names a bad buffer.
TEST(FileChannelTest, RefusesBadBuffersAndClosedChannels) {
    ScopedTempFolder folder;
    WriteFile(folder.PathOf("in"), "x");
    FileIBinaryChannel input(At(folder.PathOf("in")), FileShare::Read);
    FileOBinaryChannel output(At(folder.PathOf("out")), false, FileShare::None);
    char buffer[1];
    struct Case {
        std::function<void()> call;
        const char* message;
        int code;
    };
    const int argument = Yr::kIllegalArgumentErrorCode;
    const Case cases[] = {
        {[&] { input.Read(nullptr, 1, Yr::kReadSome); },
         "Invalid target buffer: target buffer is null.", argument},
        {[&] { input.Read(buffer, 0, Yr::kReadSome); }, "Invalid target buffer: buffer size is 0.",
         argument},
        {[&] { output.Write(nullptr, 1); }, "Invalid source buffer: source buffer is null.",
         argument},
        {[&] { output.Write("x", 0); }, "Invalid source buffer: buffer size is 0.", argument},
        {[&] { input.Read(buffer, 1, Yr::kReadSome); }, "File binary input channel is closed.",
         Yr::kIOErrorCode},
        {[&] { input.GetAvailable(); }, "File binary input channel is closed.", Yr::kIOErrorCode},
        {[&] { output.Write("x", 1); }, "File binary output channel is closed.", Yr::kIOErrorCode},
        {[&] { output.Flush(); }, "File binary output channel is closed.", Yr::kIOErrorCode},
    };
    // Closing twice is harmless.
    for (int time = 0; time < 2; ++time) {
        input.Close();
        output.Close();
    }
    for (const Case& c : cases) ExpectYrException<Yr::YrException>(c.call, c.message, c.code);
}

TEST(FileChannelTest, FactoriesOpenAFreshChannelEachTime) {
    ScopedTempFolder folder;
    const Location file = At(folder.PathOf("made"));
    FileOBinaryChannelFactory appending(file, true, FileShare::None);
    for (const char* part : {"ab", "cd"}) {
        std::unique_ptr<Yr::OBinaryChannel> output(appending.GetOutputChannel());
        output->Write(part, 2);
        output->Close();
    }
    const FileIBinaryChannelFactory reading(file, FileShare::Read);
    std::unique_ptr<Yr::IBinaryChannel> input(reading.GetInputChannel());
    EXPECT_EQ(input->GetAvailable(), 4u);
    EXPECT_EQ(ReadFile(folder.PathOf("made")), "abcd");
}

}  // namespace
