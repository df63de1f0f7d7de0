#include "Common/IO/LocationUtils.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Testing::At;

using namespace Morvelan::Common::IO;
using ::IO::Location;
using ::IO::RelativeLocation;
using Morvelan::Testing::ExpectYrException;
using Morvelan::Testing::ScopedTempFolder;
using Yr::UniString;

constexpr int kIllegal = Yr::kIllegalArgumentErrorCode;
constexpr int kIO = Yr::kIOErrorCode;

Location At(const char* path) {
    return Location::Parse(path);
}

// Runs `action` and expects an exception of the named class with `message`.
void ExpectThrown(const std::function<void()>& action, const char* className,
                  const std::string& message) {
    try {
        action();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const Yr::YrException& e) {
        EXPECT_STREQ(e.GetName(), className) << message;
        EXPECT_EQ(e.what(), message);
        EXPECT_EQ(e.GetErrorCode(), kIO) << message;
    }
}

// Points TMPDIR elsewhere for one test and puts it back.
class ScopedTmpdir {
public:
    explicit ScopedTmpdir(const std::string& value) {
        const char* saved = std::getenv("TMPDIR");
        m_hadValue = saved != nullptr;
        if (m_hadValue) m_saved = saved;
        ::setenv("TMPDIR", value.c_str(), 1);
    }
    ~ScopedTmpdir() { m_hadValue ? ::setenv("TMPDIR", m_saved.c_str(), 1) : ::unsetenv("TMPDIR"); }

private:
    bool m_hadValue = false;
    std::string m_saved;
};

TEST(LocationUtilsTest, ChecksReportTheFirstFaultAtTheCallersLine) {
    const struct {
        std::function<void()> check;
        const char* message;
    } kCases[] = {
        {[] { CheckLocation(At("/a/b:c"), "Caller", 42); },
         "Invalid location '/a/b:c': location is not legal."},
        {[] { CheckLocation(At("/"), "Caller", 42); }, "Invalid location: location is empty."},
        {[] { CheckLocation(At("a"), "Caller", 42); },
         "Invalid location 'a': location is not legal."},
        {[] { CheckLocations({}, "Caller", 42); }, "Invalid location list: list is empty."},
        {[] {
             CheckLocations({At("/a"), At("/b|"), At("/")}, "Caller", 42);
         },
         "Invalid location list: list contains illegal location: '/b|'."},
        {[] {
             CheckLocations({At("/a"), At("/")}, "Caller", 42);
         },
         "Invalid location list: list contains empty location."},
        {[] { CheckRelativeLocation(RelativeLocation::Parse("a/?"), "Caller", 42); },
         "Invalid relative location 'a/?': relative location is not legal."},
        {[] { CheckRelativeLocation(RelativeLocation(), "Caller", 42); },
         "Invalid relative location: relative location is empty."},
    };
    for (const auto& c : kCases) {
        try {
            c.check();
            ADD_FAILURE() << "no exception, expected: " << c.message;
        } catch (const Yr::IllegalArgumentException& e) {
            EXPECT_STREQ(e.what(), c.message);
            EXPECT_EQ(e.GetErrorCode(), kIllegal);
            EXPECT_STREQ(e.GetFileName(), "Caller");
            EXPECT_EQ(e.GetLineNumber(), 42u);
        }
    }
    EXPECT_TRUE(IsValid(At("/a")));
    EXPECT_FALSE(IsValid(At("/")));
    EXPECT_TRUE(IsValid(RelativeLocation::Parse("a/b")));
    EXPECT_FALSE(IsValid(RelativeLocation::Parse("/a")));
}

TEST(LocationUtilsTest, UrlsAndPathsRoundTripWithoutEncoding) {
    const Location location = LocationFromURL("file:///a b/c");
    EXPECT_EQ(location, LocationFromPath("/a b/c"));
    EXPECT_EQ(LocationToURL(location), "file:///a b/c");
    EXPECT_EQ(LocationToPath(location), "/a b/c");
    EXPECT_EQ(LocationToPath(RelativeLocation::Parse("x/y")), "x/y");
    EXPECT_EQ(LocationFromRelativePath(At("/a"), "b/../c"), At("/a/b/../c"));
    for (const char* url : {"", "x file:///a", "http://a/b", "file:/a"})
        ExpectYrException<Yr::IllegalArgumentException>([&] { LocationFromURL(url); },
                                                        "Invalid file url.", kIllegal);
    ExpectYrException<Yr::IllegalArgumentException>([] { LocationFromPath(""); },
                                                    "Invalid path: path is empty.", kIllegal);
    ExpectYrException<Yr::IOException>(
        [] { LocationFromURL("file://a/b"); },
        "Failed to create location from path: 'a/b': the specified path is not absolute.", kIO);
    ExpectYrException<Yr::IOException>(
        [] { LocationFromRelativePath(At("/a"), "/b"); },
        "Failed to create location from relative path: '/b': the specified path is not relative.",
        kIO);
    EXPECT_TRUE(IsAbsolutePath("/"));
    EXPECT_TRUE(IsRelativePath("a/b"));
    ExpectYrException<Yr::IOException>([] { IsAbsolutePath(UniString("/a\0b", 4)); },
                                       "Invalid path: '/a", kIO);
}

TEST(LocationUtilsTest, ConcatenateTestsEveryNameBeforeAppending) {
    EXPECT_EQ(Concatenate(At("/a"), "b"), At("/a/b"));
    EXPECT_EQ(Concatenate(At("/a"), "b", "c", "d"), At("/a/b/c/d"));
    EXPECT_EQ(Concatenate(At("/a"), std::vector<UniString>{"b", "c"}), At("/a/b/c"));
    EXPECT_EQ(Concatenate(At("/a"), RelativeLocation::Parse("b/c")), At("/a/b/c"));
    ExpectYrException<Yr::IllegalArgumentException>([] { Concatenate(At("/a"), "b", ""); },
                                                    "Invalid name: name is empty.", kIllegal);
    ExpectYrException<Yr::IllegalArgumentException>(
        [] {
            Concatenate(At("/a"), std::vector<UniString>{"b", ""});
        },
        "Invalid name list: list contains empty name.", kIllegal);
    ExpectYrException<Yr::IllegalArgumentException>(
        [] { Concatenate(At("/a"), std::vector<UniString>{}); },
        "Invalid name list: list is empty.", kIllegal);
    ExpectYrException<Yr::IOException>(
        [] { Concatenate(At("/a"), "b", "x/y"); },
        "Failed to concatenate name: 'x/y' to location: '/a'. (Error code: -2130640112)", kIO);
    ExpectYrException<Yr::IllegalArgumentException>(
        [] { Concatenate(At("/"), RelativeLocation::Parse("b:")); },
        "Invalid relative location 'b:': relative location is not legal.", kIllegal);
}

TEST(LocationUtilsTest, TakesLocationsApart) {
    EXPECT_EQ(GetName(At("/a/b.txt")), "b.txt");
    EXPECT_TRUE(IsAncestorOf(At("/a"), At("/a/b/c")));
    ExpectYrException<Yr::IllegalArgumentException>(
        [] { IsAncestorOf(At("/a"), At("/")); }, "Invalid location: location is empty.", kIllegal);
}

TEST(LocationUtilsTest, NormalizeFoldsDotsButKeepsLeadingParents) {
    const struct {
        const char* input;
        const char* expected;
    } kCases[] = {
        {"/a/./b/../c", "/a/c"},  {"/a/b/../../c", "/c"},  {"/a/../b", "/b"}, {"/../a", "/../a"},
        {"/../../a", "/../../a"}, {"/a/../../b", "/../b"}, {"/a/..", "/"},    {"/./.", "/"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Normalize(At(c.input)).GetDisplayText(), c.expected) << c.input;
}

TEST(LocationUtilsTest, ResolveFollowsLinksAndReportsMissingEntries) {
    ScopedTempFolder folder;
    std::filesystem::create_directory(folder.PathOf("target"));
    std::filesystem::create_symlink(folder.PathOf("target"), folder.PathOf("link"));
    EXPECT_EQ(Resolve(At(folder.PathOf("link/../link"))),
              At(std::filesystem::canonical(folder.PathOf("target")).string()));
    const std::string missing = folder.PathOf("missing");
    ExpectYrException<Yr::IOException>(
        [&] { Resolve(At(missing)); },
        ("Failed to resolve location: '" + missing + ". (Error code: -2130640640)").c_str(), kIO);
}

TEST(LocationUtilsTest, NameCharactersAndTheirReplacement) {
    for (char32_t legal : {U' ', U'é', U'a', U'.', U'\U0001F600'})
        EXPECT_TRUE(IsLegalNameChar(legal)) << static_cast<Yr::UInt32>(legal);
    for (char32_t illegal :
         {U'\t', U'\0', U'\x1F', U'|', U'"', U'*', U'/', U':', U'<', U'>', U'?', U'\\'})
        EXPECT_FALSE(IsLegalNameChar(illegal)) << static_cast<Yr::UInt32>(illegal);
    EXPECT_EQ(NormalizeName("a:b?c", U'_'), "a_b_c");
    EXPECT_EQ(NormalizeName("é|ü", U'é'), "ééü");
    ExpectYrException<Yr::IllegalArgumentException>([] { NormalizeName("", U'*'); },
                                                    "Invalid name: name is empty.", kIllegal);
    ExpectYrException<Yr::IllegalArgumentException>(
        [] { NormalizeName("a", U'*'); },
        "Invalid replacement character: replacement character is not a legal name character.",
        kIllegal);
}

// A folder whose path is exactly `byteCount` bytes long; it need not exist.
Location FolderOfPathLength(std::size_t byteCount) {
    Location folder;
    for (; byteCount > 201; byteCount -= 201)
        folder.Append(::IO::Name(std::string(200, 'f').c_str()));
    folder.Append(::IO::Name(std::string(byteCount - 1, 'f').c_str()));
    return folder;
}

TEST(LocationUtilsTest, LegalFileLocationShortensTheBaseByStepsAndKeepsTheExtension) {
    // With `room` bytes left for the base, the first cut that fits is taken:
    // 300 is made legal as 251, then 241 ... 81, 71, 66 ... 41, 36, 33 ... 21, 18, 17 ...;
    // 100 goes 90, 80, 75 ... 40, 37 ...
    const struct {
        std::size_t givenBase;
        std::size_t room;
        std::size_t baseLength;
    } kCases[] = {{300, 251, 251}, {300, 234, 231}, {300, 80, 71}, {300, 40, 36},
                  {300, 20, 18},   {300, 5, 5},     {100, 79, 75}, {100, 39, 37}};
    for (const auto& c : kCases) {
        // The folder, a separator, the base and ".txt" fill PATH_MAX - 1 bytes.
        const Location folder = FolderOfPathLength(Location::kMaxPathByteCount - 5 - c.room);
        const UniString name = (std::string(c.givenBase, 'b') + ".txt").c_str();
        EXPECT_EQ(CreateLegalFileLocation(folder, name),
                  Concatenate(folder, (std::string(c.baseLength, 'b') + ".txt").c_str()))
            << c.givenBase << " in " << c.room;
    }
    EXPECT_EQ(CreateLegalFileLocation(At("/a"), "x:y.t?t"), At("/a/x_y.t_t"));
}

TEST(LocationUtilsTest, LegalFileLocationFailsWhenOneCharacterIsStillTooLong) {
    const Location folder = FolderOfPathLength(Location::kMaxPathByteCount - 5);
    try {
        CreateLegalFileLocation(folder, "name.txt");
        ADD_FAILURE() << "no exception";
    } catch (const Yr::IOException& e) {
        EXPECT_EQ(e.GetMessage(), UniString::Printf("Failed to create legal file location: folder "
                                                    "location: '%T', file name: 'name.txt'.",
                                                    folder.GetDisplayText()));
        ASSERT_NE(e.GetCause(), nullptr);
        EXPECT_STREQ(e.GetCause()->what(), "File name can't be truncated any further.");
        EXPECT_EQ(e.GetCause()->GetErrorCode(), kIO);
    }
}

// Fails the calls behind the special locations with one status.
class FailingSpecialCalls : public ::IO::FileSystemWrapper {
public:
    FailingSpecialCalls(::IO::FileSystem& target, ::IO::Status status)
        : FileSystemWrapper(target), m_status(status) {}
    ::IO::Status GetProgramPath(std::string&) override { return m_status; }
    ::IO::Status GetWorkingFolder(std::string&) override { return m_status; }

private:
    ::IO::Status m_status;
};

TEST(LocationUtilsTest, SpecialLocationFailuresBecomeFileSystemExceptions) {
    const struct {
        Location (*get)();
        ::IO::Status status;
        const char* className;
        const char* message;
    } kCases[] = {
        {&GetApplicationFileLocation, ::IO::kFileAccessDenied, "AccessDeniedException",
         "Failed to get application folder location. Access is denied."},
        {&GetApplicationFolderLocation, ::IO::kSystemErrorBase | 5, "IOException",
         "Failed to get application folder location. (Error code: -2130575355)"},
        {&GetCurrentWorkingFolderLocation, ::IO::kFileNotFound, "FileNotFoundException",
         "Failed to get current working folder location. File is not found."},
    };
    for (const auto& c : kCases) {
        FailingSpecialCalls failing(::IO::FileSystem::Get(), c.status);
        ::IO::ScopedFileSystem scope(failing);
        ExpectThrown(c.get, c.className, c.message);
    }
}

TEST(LocationUtilsTest, TemporaryLocationsAreFreeNamesInTheFolder) {
    ScopedTempFolder folder;
    const Location location = At(folder.GetPath());
    std::vector<Location> made;
    for (int i = 0; i < 3; ++i) {
        made.push_back(CreateTemporaryFileLocation(location, "pre", ".tmp"));
        EXPECT_EQ(GetParentLocation(made.back()), location);
        EXPECT_FALSE(std::filesystem::exists(LocationToPath(made.back()).ToUtf8()));
        std::ofstream(LocationToPath(made.back()).ToUtf8()) << "taken";
    }
    EXPECT_NE(made[0], made[1]);
    EXPECT_NE(made[1], made[2]);
    {
        const ScopedTmpdir relative("relative");
        EXPECT_EQ(GetTempFolderLocation(), At("/tmp"));
    }
    const ScopedTmpdir tmpdir(folder.GetPath());
    EXPECT_EQ(GetParentLocation(CreateTemporaryFileLocation("pre", ".tmp")), location);
    EXPECT_EQ(GetTempFolderLocation(), location);
}

TEST(LocationUtilsTest, TemporaryLocationFailuresNameTheFolder) {
    ScopedTempFolder folder;
    std::ofstream(folder.PathOf("file")) << "x";
    const std::string missing = folder.PathOf("missing");
    ExpectThrown([&] { CreateTemporaryFileLocation(At(missing), "p", "s"); },
                 "FolderNotFoundException",
                 "Failed to create temporary file location in folder: '" + missing +
                     "'. Folder is not found.");
    ExpectThrown([&] { CreateTemporaryFileLocation(At(folder.PathOf("file")), "p", "s"); },
                 "NotFolderException",
                 "Failed to create temporary file location in folder: '" + folder.PathOf("file") +
                     "'. Not a folder.");
    const ScopedTmpdir tmpdir(missing);
    ExpectThrown([] { GetTempFolderLocation(); }, "FolderNotFoundException",
                 "Failed to get temp folder location. Folder is not found.");
    ExpectThrown([] { CreateTemporaryFileLocation("p", "s"); }, "FolderNotFoundException",
                 "Failed to create temporary file location in temporary folder. Folder is not "
                 "found.");
}

}  // namespace
