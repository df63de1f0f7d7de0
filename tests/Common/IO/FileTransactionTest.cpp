#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Common/IO/CreateFileTransaction.h"
#include "Common/IO/CreateFilesTransaction.h"
#include "Common/IO/FileTransactionException.h"
#include "Common/IO/UpdateFileTransaction.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/CapturedDebugOutput.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Testing::At;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::WriteFile;

using namespace Morvelan::Common::IO;
using ::IO::Location;
using ::IO::Status;
using Morvelan::Testing::CapturedDebugOutput;
using Morvelan::Testing::ScopedTempFolder;

// Zero bytes and high bytes catch any text-mode or truncating restore.
const std::string kOldBytes("old\0\xff\x01 content\n", 16);
const std::string kNewBytes = "new content, longer than the old one";

bool Exists(const std::string& path) {
    return std::filesystem::exists(path);
}

// The message of a FileTransactionException and of its cause.
std::pair<std::string, std::string> CatchMessages(const std::function<void()>& action) {
    try {
        action();
    } catch (const FileTransactionException& e) {
        EXPECT_EQ(e.GetErrorCode(), Yr::kIOErrorCode);
        return {e.what(), e.GetCause() ? e.GetCause()->what() : ""};
    }
    ADD_FAILURE() << "no FileTransactionException";
    return {};
}

// Fails renames and removals as planned; a rename may do its work and still
// report failure, as when a crash interrupts the confirmation.
class FaultyFileSystem : public ::IO::FileSystemWrapper {
public:
    FaultyFileSystem() : FileSystemWrapper(::IO::FileSystem::Get()) {}

    Status renameFailure = ::IO::kSuccess;
    bool renameBeforeFailing = false;
    Status removeFailure = ::IO::kSuccess;
    int sleeps = 0;

    Status Rename(const std::string& source, const std::string& target) override {
        if (renameFailure == ::IO::kSuccess || renameBeforeFailing)
            if (const Status status = FileSystemWrapper::Rename(source, target)) return status;
        return renameFailure;
    }
    Status RemoveFile(const std::string& path) override {
        if (removeFailure != ::IO::kSuccess) return removeFailure;
        return FileSystemWrapper::RemoveFile(path);
    }
    void Sleep(Yr::UInt32) override { ++sleeps; }
};

class FileTransactionTest : public ::testing::Test {
protected:
    ScopedTempFolder folder;
    const std::string data = folder.PathOf("data");
    const std::string backup = folder.PathOf("data.bak");
};

TEST_F(FileTransactionTest, AbortAfterNewFileRestoresOldBytesExactly) {
    WriteFile(data, kOldBytes);
    UpdateFileTransaction transaction(At(data));
    EXPECT_EQ(ReadFile(backup), kOldBytes);
    EXPECT_FALSE(Exists(data));
    WriteFile(data, kNewBytes);
    transaction.Abort();
    EXPECT_TRUE(transaction.IsAborted());
    EXPECT_FALSE(transaction.IsCommitted());
    EXPECT_EQ(ReadFile(data), kOldBytes);
    EXPECT_FALSE(Exists(backup));
}

TEST_F(FileTransactionTest, UpdateTakesFirstFreeBackupNumberAndCommitRemovesOnlyIt) {
    WriteFile(data, kOldBytes);
    WriteFile(backup, "older");
    WriteFile(folder.PathOf("data.bak.1"), "oldest");
    UpdateFileTransaction transaction(At(data));
    EXPECT_EQ(ReadFile(folder.PathOf("data.bak.2")), kOldBytes);
    WriteFile(data, kNewBytes);
    transaction.Commit();
    EXPECT_TRUE(transaction.IsCommitted());
    EXPECT_EQ(ReadFile(data), kNewBytes);
    EXPECT_FALSE(Exists(folder.PathOf("data.bak.2")));
    EXPECT_EQ(ReadFile(backup), "older");
    EXPECT_EQ(ReadFile(folder.PathOf("data.bak.1")), "oldest");
}

TEST_F(FileTransactionTest, UpdateOfMissingFileHasNothingToRestore) {
    {
        UpdateFileTransaction transaction(At(data));
        transaction.Commit();
        EXPECT_TRUE(transaction.IsCommitted());
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.GetPath()));
    UpdateFileTransaction transaction(At(data));
    WriteFile(data, kNewBytes);
    transaction.Abort();
    EXPECT_TRUE(std::filesystem::is_empty(folder.GetPath()));
}

TEST_F(FileTransactionTest, DestructionWithoutCommitAborts) {
    WriteFile(data, kOldBytes);
    const std::string created = folder.PathOf("created");
    const std::string listed = folder.PathOf("listed");
    {
        UpdateFileTransaction update(At(data));
        WriteFile(data, kNewBytes);
        CreateFileTransaction create(At(created));
        WriteFile(created, kNewBytes);
        CreateFilesTransaction createMany({At(listed), At(folder.PathOf("never written"))});
        WriteFile(listed, kNewBytes);
    }
    EXPECT_EQ(ReadFile(data), kOldBytes);
    EXPECT_FALSE(Exists(backup));
    EXPECT_FALSE(Exists(created));
    EXPECT_FALSE(Exists(listed));
}

TEST_F(FileTransactionTest, CommittedCreationsStay) {
    CreateFileTransaction create(At(data));
    WriteFile(data, kNewBytes);
    create.Commit();
    CreateFilesTransaction createMany;
    EXPECT_TRUE(createMany.EnlistFile(At(backup)));
    WriteFile(backup, kNewBytes);
    createMany.Commit();
    EXPECT_EQ(ReadFile(data), kNewBytes);
    EXPECT_EQ(ReadFile(backup), kNewBytes);
}

TEST_F(FileTransactionTest, EnlistingCountsOnlyNewLocations) {
    CreateFilesTransaction transaction;
    EXPECT_TRUE(transaction.EnlistFile(At(data)));
    EXPECT_FALSE(transaction.EnlistFile(At(data)));
    EXPECT_EQ(transaction.EnlistFiles({}), 0u);
    EXPECT_EQ(transaction.EnlistFiles({At(backup), At(data), At(backup)}), 1u);
    ASSERT_EQ(transaction.GetFileLocations().GetCount(), 2u);
    EXPECT_EQ(transaction.GetFileLocations()[1], At(backup));
    transaction.Abort();
    EXPECT_EQ(CatchMessages([&] { transaction.EnlistFile(At(folder.PathOf("x"))); }).first,
              "File transaction is not active: transaction is aborted.");
}

TEST_F(FileTransactionTest, EndedTransactionRefusesFurtherCalls) {
    const auto commit = [](FileTransaction& t) { t.Commit(); };
    const auto abort = [](FileTransaction& t) { t.Abort(); };
    const std::string quoted = "'" + At(data).GetDisplayText().ToUtf8() + "'.";
    const std::string committed = "File transaction is not active: transaction is committed.";
    const std::string aborted = "File transaction is not active: transaction is aborted.";
    using Factory = std::function<std::unique_ptr<FileTransaction>()>;
    const Factory update = [&] { return std::make_unique<UpdateFileTransaction>(At(data)); };
    const Factory create = [&] { return std::make_unique<CreateFileTransaction>(At(data)); };
    const Factory createMany = [&] { return std::make_unique<CreateFilesTransaction>(); };
    const struct {
        Factory make;
        std::function<void(FileTransaction&)> first, second;
        std::string message, cause;
    } cases[] = {
        {update, commit, commit, "Failed to commit update file transaction on file: " + quoted,
         committed},
        {update, abort, commit, "Failed to commit update file transaction on file: " + quoted,
         aborted},
        {update, commit, abort, "Failed to abort update file transaction on file: " + quoted,
         committed},
        {create, commit, commit, "Failed to commit create file transaction on file: " + quoted,
         committed},
        {create, abort, abort, "Failed to abort create file transaction on file: " + quoted,
         aborted},
        {createMany, abort, commit, "Failed to commit create files transaction.", aborted},
        {createMany, commit, abort, "Failed to abort create files transaction.", committed},
    };
    for (const auto& c : cases) {
        const std::unique_ptr<FileTransaction> transaction = c.make();
        c.first(*transaction);
        const auto [message, cause] = CatchMessages([&] { c.second(*transaction); });
        EXPECT_EQ(message, c.message);
        EXPECT_EQ(cause, c.cause) << c.message;
    }
}

TEST_F(FileTransactionTest, InvalidLocationsAreRefused) {
    EXPECT_THROW(CreateFileTransaction{Location()}, Yr::IllegalArgumentException);
    EXPECT_THROW(CreateFilesTransaction{std::vector<Location>{}}, Yr::IllegalArgumentException);
    EXPECT_THROW(CreateFilesTransaction().EnlistFile(Location()), Yr::IllegalArgumentException);
    const auto [message, cause] = CatchMessages([] { UpdateFileTransaction{Location()}; });
    EXPECT_EQ(message, "Failed to start update file transaction on file: '/'.");
    EXPECT_EQ(cause, "Invalid location: location is empty.");
}

TEST_F(FileTransactionTest, FailedStartLeavesOriginalIntact) {
    WriteFile(data, kOldBytes);
    for (const bool renameBeforeFailing : {false, true}) {
        FaultyFileSystem faulty;
        faulty.renameFailure = ::IO::kFileSystemDiskFull;
        faulty.renameBeforeFailing = renameBeforeFailing;
        {
            ::IO::ScopedFileSystem scope(faulty);
            const auto [message, cause] = CatchMessages([&] { UpdateFileTransaction{At(data)}; });
            EXPECT_EQ(message, "Failed to start update file transaction on file: '" +
                                   At(data).GetDisplayText().ToUtf8() + "'.");
        }
        EXPECT_EQ(ReadFile(renameBeforeFailing ? backup : data), kOldBytes);
    }
}

TEST_F(FileTransactionTest, FailedRestoreKeepsBackupAndStaysActive) {
    WriteFile(data, kOldBytes);
    UpdateFileTransaction transaction(At(data));
    WriteFile(data, kNewBytes);
    FaultyFileSystem faulty;
    {
        ::IO::ScopedFileSystem scope(faulty);
        faulty.renameFailure = ::IO::kFileSystemDiskFull;
        EXPECT_THROW(transaction.Abort(), FileTransactionException);
    }
    EXPECT_FALSE(transaction.IsAborted());
    EXPECT_FALSE(Exists(data));
    EXPECT_EQ(ReadFile(backup), kOldBytes);
    transaction.Abort();
    EXPECT_EQ(ReadFile(data), kOldBytes);
}

TEST_F(FileTransactionTest, AccessDeniedCommitRetriesThenKeepsBackup) {
    WriteFile(data, kOldBytes);
    UpdateFileTransaction transaction(At(data));
    WriteFile(data, kNewBytes);
    FaultyFileSystem faulty;
    faulty.removeFailure = ::IO::kFileSystemAccessDenied;
    {
        ::IO::ScopedFileSystem scope(faulty);
        const auto [message, cause] = CatchMessages([&] { transaction.Commit(); });
        EXPECT_NE(cause.find("Access is denied."), std::string::npos) << cause;
    }
    EXPECT_EQ(faulty.sleeps, 5);
    EXPECT_FALSE(transaction.IsCommitted());
    EXPECT_EQ(ReadFile(backup), kOldBytes);
    transaction.Commit();
    EXPECT_FALSE(Exists(backup));
}

TEST_F(FileTransactionTest, FailedAbortOnDestructionIsOnlyLogged) {
    FaultyFileSystem faulty;
    faulty.removeFailure = ::IO::kFileSystemDiskFull;
    CapturedDebugOutput output;
    {
        ::IO::ScopedFileSystem scope(faulty);
        CreateFileTransaction transaction(At(data));
        WriteFile(data, kNewBytes);
    }
    EXPECT_NE(output.GetText().find("Failed to abort create file transaction on file:"),
              std::string::npos)
        << output.GetText();
    EXPECT_EQ(ReadFile(data), kNewBytes);
}

}  // namespace
