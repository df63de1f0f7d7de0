#include "Common/IO/IOUtilities.h"

#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Common/IO/LocationFilter.h"
#include "Common/IO/LocationProcessor.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Exceptions.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Testing::At;
using Morvelan::Testing::ReadFile;
using Morvelan::Testing::WriteFile;

using namespace Morvelan::Common::IO;
using ::IO::Location;
using ::IO::Status;
using Morvelan::Testing::ScopedTempFolder;
using Yr::UniString;

constexpr Yr::UInt32 kCallerLine = 4242;
const RetryOptions kDefaults(250, 5);

// Runs `action` and expects an exception of the named class with `message`
// and error code -7003.
void ExpectThrown(const std::function<void()>& action, const char* className,
                  const std::string& message) {
    try {
        action();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const Yr::YrException& e) {
        EXPECT_STREQ(e.GetName(), className) << message;
        EXPECT_EQ(e.what(), message);
        EXPECT_EQ(e.GetErrorCode(), Yr::kIOErrorCode) << message;
    }
}

// Fails chosen calls a set number of times and records what the retry loop
// and the durable variants do.
class FaultyFileSystem : public ::IO::FileSystemWrapper {
public:
    FaultyFileSystem() : FileSystemWrapper(::IO::FileSystem::Get()) {}

    std::map<std::string, std::vector<Status>> failures;
    std::map<std::string, int> calls;
    std::vector<Yr::UInt32> sleeps;
    std::vector<std::string> flushes;

    Status Rename(const std::string& source, const std::string& target) override {
        if (const Status status = Fail("Rename")) return status;
        return FileSystemWrapper::Rename(source, target);
    }
    Status Exchange(const std::string& first, const std::string& second) override {
        if (const Status status = Fail("Exchange")) return status;
        return FileSystemWrapper::Exchange(first, second);
    }
    Status CopyFile(const std::string& source, const std::string& target) override {
        if (const Status status = Fail("CopyFile")) return status;
        return FileSystemWrapper::CopyFile(source, target);
    }
    Status FlushFile(const std::string& path) override {
        flushes.push_back("file " + path);
        if (const Status status = Fail("FlushFile")) return status;
        return FileSystemWrapper::FlushFile(path);
    }
    Status FlushFolder(const std::string& path) override {
        flushes.push_back("folder " + path);
        if (const Status status = Fail("FlushFolder")) return status;
        return FileSystemWrapper::FlushFolder(path);
    }
    void Sleep(Yr::UInt32 milliseconds) override { sleeps.push_back(milliseconds); }

private:
    // The next planned failure of `call`, or success once they are used up.
    Status Fail(const std::string& call) {
        ++calls[call];
        std::vector<Status>& planned = failures[call];
        if (planned.empty()) return ::IO::kSuccess;
        const Status status = planned.front();
        // A failure planned last repeats for ever.
        if (planned.size() > 1) planned.erase(planned.begin());
        return status;
    }
};

struct MappingCase {
    void (*thrower)(const UniString&, Status, const char*, Yr::UInt32);
    Status status;
    const char* className;
    const char* message;
};

TEST(IOUtilitiesTest, MapsEachStatusOfItsGroupToItsException) {
    const MappingCase cases[] = {
        {&ThrowFileError, 0x81000200, "DiskFullException", "M Disk is full."},
        {&ThrowFileError, 0x81010100, "FileNotFoundException", "M File is not found."},
        {&ThrowFileError, 0x81010101, "NotFileException", "M Not a file."},
        {&ThrowFileError, 0x81010102, "AccessDeniedException", "M Access is denied."},
        {&ThrowFolderError, 0x81010200, "FolderNotFoundException", "M Folder is not found."},
        {&ThrowFolderError, 0x81010201, "NotFolderException", "M Not a folder."},
        {&ThrowFolderError, 0x81010202, "AccessDeniedException", "M Access is denied."},
        {&ThrowFolderError, 0x81010207, "DiskFullException", "M Disk is full."},
        {&ThrowFileSystemError, 0x81010300, "FileNotFoundException", "M File is not found."},
        {&ThrowFileSystemError, 0x81010301, "FolderNotFoundException", "M Folder is not found."},
        {&ThrowFileSystemError, 0x81010305, "NotFileException", "M Not a file."},
        {&ThrowFileSystemError, 0x81010306, "NotFolderException", "M Not a folder."},
        {&ThrowFileSystemError, 0x81010307, "AccessDeniedException", "M Access is denied."},
        {&ThrowFileSystemError, 0x81010308, "DiskFullException", "M Disk is full."},
        // A status of another group is unknown to the mapping.
        {&ThrowFileError, 0x81010307, "IOException", "M (Error code: -2130640121)"},
        {&ThrowFolderError, 0x81010102, "IOException", "M (Error code: -2130640638)"},
        {&ThrowFileSystemError, 0x81000200, "IOException", "M (Error code: -2130705920)"},
        {&ThrowFileSystemError, 0x81010399, "IOException", "M (Error code: -2130639975)"},
        {&ThrowFolderError, 0, "IOException", "M"},
    };
    for (const MappingCase& c : cases) {
        try {
            c.thrower("M", c.status, "Caller/Unit", kCallerLine);
            ADD_FAILURE() << c.message;
        } catch (const Yr::YrException& e) {
            EXPECT_STREQ(e.GetName(), c.className) << c.message;
            EXPECT_EQ(e.what(), std::string(c.message));
            EXPECT_EQ(e.GetErrorCode(), Yr::kIOErrorCode);
            EXPECT_STREQ(e.GetFileName(), "Caller/Unit");
            EXPECT_EQ(e.GetLineNumber(), kCallerLine);
        }
    }
}

TEST(IOUtilitiesTest, ChecksPassSuccessAndBuildMessagesOnlyOnFailure) {
    int produced = 0;
    const auto message = [&] {
        ++produced;
        return UniString("M");
    };
    const auto detail = [] { return UniString("D"); };
    CheckFileError(message, ::IO::kSuccess, "U", 1);
    CheckFolderError(message, detail, ::IO::kSuccess, "U", 1);
    CheckFileSystemError("M", "D", ::IO::kSuccess, "U", 1);
    EXPECT_EQ(produced, 0);
    ExpectThrown([&] { CheckFileSystemError(message, detail, 0x81010300, "U", 1); },
                 "FileNotFoundException", "M D File is not found.");
    ExpectThrown([] { CheckFolderError("M", "D", 0x81010201, "U", 1); }, "NotFolderException",
                 "M D Not a folder.");
    EXPECT_EQ(produced, 1);
}

TEST(IOUtilitiesTest, CheckFileAndCheckFolderNameTheEntry) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("file"), "x");
    const std::string folder = temp.GetPath();
    const std::string missing = temp.PathOf("missing");
    const std::string file = temp.PathOf("file");
    ExpectThrown([&] { CheckFile(At(folder), "U", 1); }, "NotFileException",
                 "Not a file: '" + folder + "'.");
    ExpectThrown([&] { CheckFile(At(missing), "U", 1); }, "FileNotFoundException",
                 "File is not found: '" + missing + "'.");
    ExpectThrown([&] { CheckFolder(At(file), "U", 1); }, "NotFolderException",
                 "Not a folder: '" + file + "'.");
    ExpectThrown([&] { CheckFolder(At(missing), "U", 1); }, "FolderNotFoundException",
                 "Folder is not found: '" + missing + "'.");
    try {
        CheckFile(At(folder), "Caller/Unit", kCallerLine);
        ADD_FAILURE();
    } catch (const Yr::YrException& e) {
        EXPECT_STREQ(e.GetFileName(), "Caller/Unit");
        EXPECT_EQ(e.GetLineNumber(), kCallerLine);
    }
    EXPECT_NO_THROW(CheckFile(At(file), "U", 1));
    EXPECT_NO_THROW(CheckFolder(At(folder), "U", 1));
}

TEST(IOUtilitiesTest, QueriesDescribeRealEntries) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("file"), "12345");
    const Location file = At(temp.PathOf("file"));
    const Location folder = At(temp.GetPath());
    EXPECT_TRUE(Exists(file) && IsFile(file) && !IsFolder(file));
    EXPECT_TRUE(Exists(folder) && IsFolder(folder) && !IsFile(folder));
    EXPECT_FALSE(Exists(At(temp.PathOf("missing"))));
    EXPECT_EQ(GetFileSize(file), 5u);
    EXPECT_GT(GetFileModificationTime(file), 1700000000);
    EXPECT_GT(GetUsedSpace(folder), 0u);
    EXPECT_NO_THROW(GetFreeSpace(folder));
    ExpectThrown([&] { GetFileSize(folder); }, "NotFileException",
                 "Failed to get size of file: '" + temp.GetPath() + "'. Not a file.");
    ExpectThrown([&] { GetFreeSpace(file); }, "NotFolderException",
                 "Not a folder: '" + temp.PathOf("file") + "'.");
}

TEST(IOUtilitiesTest, RetriesOnlyAccessDeniedCountPlusOneTimes) {
    struct Case {
        Yr::UInt32 count;
        Yr::UInt32 timeout;
        Status failure;
        int tries;
        std::vector<Yr::UInt32> sleeps;
        const char* className;
        const char* detail;
    };
    const Case cases[] = {
        {0,
         100,
         ::IO::kFileSystemAccessDenied,
         1,
         {},
         "AccessDeniedException",
         "Access is denied."},
        {3,
         7,
         ::IO::kFileSystemAccessDenied,
         4,
         {7, 7, 7},
         "AccessDeniedException",
         "Access is denied."},
        {3, 7, ::IO::kFileSystemNotFolder, 1, {}, "NotFolderException", "Not a folder."},
        {3, 7, ::IO::kFileAccessDenied, 1, {}, "IOException", ""},
    };
    ScopedTempFolder temp;
    const std::string source = temp.PathOf("a");
    const std::string target = temp.PathOf("b");
    WriteFile(source, "x");
    for (const Case& c : cases) {
        FaultyFileSystem faulty;
        faulty.failures["Rename"] = {c.failure};
        const ::IO::ScopedFileSystem scope(faulty);
        const std::string detail =
            *c.detail ? std::string(" ") + c.detail : " (Error code: -2130640638)";
        ExpectThrown([&] { Move(At(source), At(target), c.count, c.timeout); }, c.className,
                     "Failed to move file system entry form: '" + source + "' to: '" + target +
                         "'." + detail);
        EXPECT_EQ(faulty.calls["Rename"], c.tries);
        EXPECT_EQ(faulty.sleeps, c.sleeps);
    }
}

TEST(IOUtilitiesTest, MoveSucceedsAfterAccessDeniedWithDefaultSleeps) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("a"), "content");
    FaultyFileSystem faulty;
    faulty.failures["Rename"] = {::IO::kFileSystemAccessDenied, ::IO::kFileSystemAccessDenied,
                                 ::IO::kSuccess};
    const ::IO::ScopedFileSystem scope(faulty);
    Move(At(temp.PathOf("a")), At(temp.PathOf("b")));
    EXPECT_EQ(faulty.sleeps, (std::vector<Yr::UInt32>{250, 250}));
    EXPECT_FALSE(Exists(At(temp.PathOf("a"))));
    EXPECT_EQ(ReadFile(temp.PathOf("b")), "content");
}

TEST(IOUtilitiesTest, CopyReportsDiskFull) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("a"), "x");
    FaultyFileSystem faulty;
    faulty.failures["CopyFile"] = {::IO::kFileSystemDiskFull};
    const ::IO::ScopedFileSystem scope(faulty);
    ExpectThrown([&] { Copy(At(temp.PathOf("a")), At(temp.PathOf("b"))); }, "DiskFullException",
                 "Failed to copy file system entry from: '" + temp.PathOf("a") + "' to: '" +
                     temp.PathOf("b") + "'. Disk is full.");
    EXPECT_TRUE(faulty.sleeps.empty());
}

TEST(IOUtilitiesTest, ChangesWorkOnRealFilesAndNameThemInFailures) {
    ScopedTempFolder temp;
    const std::string a = temp.PathOf("a");
    const std::string b = temp.PathOf("b");
    const std::string missing = temp.PathOf("missing");
    WriteFile(a, "content");
    Copy(At(a), At(b));
    EXPECT_EQ(ReadFile(b), "content");
    Rename(At(b), "c");
    EXPECT_EQ(ReadFile(temp.PathOf("c")), "content");
    Delete(At(temp.PathOf("c")));
    EXPECT_FALSE(Exists(At(temp.PathOf("c"))));
    CreateParentFolder(At(temp.PathOf("x/y/z")));
    EXPECT_TRUE(IsFolder(At(temp.PathOf("x/y"))));
    Delete(At(temp.PathOf("x/y")));
    EXPECT_FALSE(Exists(At(temp.PathOf("x/y"))));

    ExpectThrown([&] { Copy(At(missing), At(b)); }, "FileNotFoundException",
                 "Failed to copy file system entry from: '" + missing + "' to: '" + b +
                     "'. File is not found.");
    ExpectThrown([&] { Rename(At(missing), "d"); }, "FileNotFoundException",
                 "Failed to rename file system entry from: '" + missing + "' to: '" +
                     temp.PathOf("d") + "'. File is not found.");
    ExpectThrown([&] { Delete(At(missing)); }, "FileNotFoundException",
                 "Failed to delete file system entry: '" + missing + "'. File is not found.");
    ExpectThrown([&] { CreateFolder(At(a + "/sub")); }, "NotFolderException",
                 "Failed to create folder: '" + a + "/sub'. Not a folder.");
    ExpectThrown(
        [&] { CreateParentFolder(At(a + "/sub/x")); }, "NotFolderException",
        "Failed to create parent folder of file system entry: '" + a + "/sub/x'. Not a folder.");
    try {
        Rename(At(a), "");
        ADD_FAILURE();
    } catch (const Yr::IllegalArgumentException& e) {
        EXPECT_STREQ(e.what(), "Invalid name: name is empty.");
        EXPECT_EQ(e.GetErrorCode(), Yr::kIllegalArgumentErrorCode);
    }
}

TEST(IOUtilitiesTest, ExchangeSwapsTwoFilesOfOneFolder) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("a"), "first");
    WriteFile(temp.PathOf("b"), "second");
    Exchange(At(temp.PathOf("a")), At(temp.PathOf("b")));
    EXPECT_EQ(ReadFile(temp.PathOf("a")), "second");
    EXPECT_EQ(ReadFile(temp.PathOf("b")), "first");
}

TEST(IOUtilitiesTest, ExchangeRefusesDifferentParentsAndRetriesFolderAccessDenied) {
    ScopedTempFolder temp;
    CreateFolder(At(temp.PathOf("sub")));
    WriteFile(temp.PathOf("a"), "first");
    WriteFile(temp.PathOf("sub/b"), "second");
    FaultyFileSystem faulty;
    faulty.failures["Exchange"] = {::IO::kFolderAccessDenied};
    const ::IO::ScopedFileSystem scope(faulty);
    ExpectThrown([&] { Exchange(At(temp.PathOf("a")), At(temp.PathOf("sub/b"))); }, "IOException",
                 "Failed to exchange file system entries: from: '" + temp.PathOf("a") + "' to: '" +
                     temp.PathOf("sub/b") +
                     "'. The parents of the specified locations must be the same.");
    EXPECT_EQ(faulty.calls["Exchange"], 0);
    ExpectThrown([&] { Exchange(At(temp.PathOf("a")), At(temp.PathOf("sub")), 2, 5); },
                 "AccessDeniedException",
                 "Failed to exchange file system entries: from: '" + temp.PathOf("a") + "' to: '" +
                     temp.PathOf("sub") + "'. Access is denied.");
    EXPECT_EQ(faulty.calls["Exchange"], 3);
    EXPECT_EQ(ReadFile(temp.PathOf("a")), "first");
}

TEST(IOUtilitiesTest, DurableVariantsFlushTheResultAndItsFolders) {
    ScopedTempFolder temp;
    const std::string root = temp.GetPath();
    CreateFolder(At(temp.PathOf("sub")));
    WriteFile(temp.PathOf("a"), "first");
    WriteFile(temp.PathOf("b"), "second");
    FaultyFileSystem faulty;
    const ::IO::ScopedFileSystem scope(faulty);

    DurableMove(At(temp.PathOf("a")), At(temp.PathOf("sub/a")), kDefaults);
    EXPECT_EQ(faulty.flushes,
              (std::vector<std::string>{"file " + temp.PathOf("sub/a"), "folder " + root,
                                        "folder " + temp.PathOf("sub")}));
    faulty.flushes.clear();
    DurableCopy(At(temp.PathOf("b")), At(temp.PathOf("c")), kDefaults);
    DurableExchange(At(temp.PathOf("b")), At(temp.PathOf("c")), kDefaults);
    DurableRename(At(temp.PathOf("c")), "d", kDefaults);
    EXPECT_EQ(faulty.flushes, (std::vector<std::string>{
                                  "file " + temp.PathOf("c"), "folder " + root,
                                  "file " + temp.PathOf("b"), "file " + temp.PathOf("c"),
                                  "folder " + root, "file " + temp.PathOf("d"), "folder " + root}));
    EXPECT_EQ(ReadFile(temp.PathOf("d")), "second");
}

TEST(IOUtilitiesTest, DurableDeleteFlushesTheParentWithDefaultRetries) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("a"), "x");
    FaultyFileSystem faulty;
    faulty.failures["FlushFolder"] = {::IO::kFileSystemAccessDenied, ::IO::kSuccess};
    const ::IO::ScopedFileSystem scope(faulty);
    DurableDelete(At(temp.PathOf("a")), RetryOptions(0, 0));
    EXPECT_FALSE(Exists(At(temp.PathOf("a"))));
    EXPECT_EQ(faulty.calls["FlushFolder"], 2);
    EXPECT_EQ(faulty.sleeps, (std::vector<Yr::UInt32>{250}));
}

TEST(IOUtilitiesTest, FlushAndEvictWorkOnRealFiles) {
    ScopedTempFolder temp;
    WriteFile(temp.PathOf("a"), "x");
    EXPECT_NO_THROW(FlushToDisk(At(temp.PathOf("a"))));
    EXPECT_NO_THROW(EvictFromSystemCache(At(temp.PathOf("a"))));
    EXPECT_NO_THROW(FlushFolderMetadataToDisk(At(temp.GetPath()), RetryOptions(0, 0)));
    ExpectThrown(
        [&] { FlushToDisk(At(temp.PathOf("missing")), 0, 0); }, "FileNotFoundException",
        "Failed to flush file to disk: '" + temp.PathOf("missing") + "'. File is not found.");
}

// Accepts the entries of one name and collects what it is given.
class NameFilterAndCollector : public LocationFilter, public LocationProcessor {
public:
    explicit NameFilterAndCollector(const char* name) : m_name(name) {}
    bool Accept(const Location& location) override { return GetName(location) == m_name; }
    void Process(const Location& location) override { collected.push_back(location); }

    std::vector<Location> collected;

private:
    UniString m_name;
};

TEST(IOUtilitiesTest, EnumerationDeliversDirectEntriesByKindAndFilter) {
    ScopedTempFolder temp;
    CreateFolder(At(temp.PathOf("sub")));
    WriteFile(temp.PathOf("a"), "x");
    WriteFile(temp.PathOf("b"), "x");
    WriteFile(temp.PathOf("sub/c"), "x");
    const Location folder = At(temp.GetPath());
    std::vector<Location> entries, files, folders;
    EXPECT_EQ(EnumerateEntries(folder, entries), 3u);
    EXPECT_EQ(EnumerateFiles(folder, files), 2u);
    EXPECT_EQ(EnumerateFolders(folder, folders), 1u);
    EXPECT_EQ(folders, std::vector<Location>{At(temp.PathOf("sub"))});

    NameFilterAndCollector onlyB("b");
    EXPECT_EQ(EnumerateFiles(folder, onlyB, onlyB), 1u);
    EXPECT_EQ(EnumerateFolders(folder, onlyB, onlyB), 0u);
    EXPECT_EQ(onlyB.collected, std::vector<Location>{At(temp.PathOf("b"))});
    std::vector<Location> accepted;
    EXPECT_EQ(EnumerateFolders(
                  folder, [](const Location&) { return false; },
                  [&](const Location& l) { accepted.push_back(l); }),
              0u);
    EXPECT_TRUE(accepted.empty());

    ExpectThrown([&] { EnumerateEntries(At(temp.PathOf("a")), entries); }, "NotFolderException",
                 "Not a folder: '" + temp.PathOf("a") + "'.");
}

}  // namespace
