#include "InputOutput/Location.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/Folder.h"
#include "InputOutput/Name.h"
#include "InputOutput/RelativeLocation.h"
#include "InputOutput/ScopedFileSystem.h"
#include "InputOutput/WellKnownLocations.h"
#include "tests/support/ScopedTempFolder.h"

namespace {

using ::IO::Location;
using ::IO::Name;
using ::IO::RelativeLocation;
using Yr::UniString;

UniString Repeated(const char* text, std::size_t count) {
    UniString result;
    for (std::size_t i = 0; i < count; ++i) result.Append(text);
    return result;
}

TEST(NameTest, SplitsBaseAndExtensionAtTheLastDotButNotALeadingOne) {
    const struct {
        const char* text;
        const char* base;
        const char* extension;
        bool hasExtension;
    } kCases[] = {
        {"a.txt", "a", "txt", true},         {"archive.tar.gz", "archive.tar", "gz", true},
        {".profile", ".profile", "", false}, {"a.", "a", "", true},
        {"plain", "plain", "", false},
    };
    for (const auto& c : kCases) {
        const Name name{UniString(c.text)};
        EXPECT_EQ(name.GetBase(), c.base) << c.text;
        EXPECT_EQ(name.GetExtension(), c.extension) << c.text;
        EXPECT_EQ(name.HasExtension(), c.hasExtension) << c.text;
    }
}

TEST(NameTest, MakeLegalReplacesCharactersAndCutsWholeCharactersToTheByteLimit) {
    const struct {
        UniString text;
        bool legal;
        UniString made;
    } kCases[] = {
        {"a:b|c\t", false, "a_b_c_"},
        {"é ü.txt", true, "é ü.txt"},
        {Repeated("a", 256), false, Repeated("a", 255)},
        // 2-byte characters: the 128th would end at byte 256.
        {Repeated("é", 200), false, Repeated("é", 127)},
        {"", false, ""},
    };
    for (const auto& c : kCases) {
        const Name name(c.text);
        EXPECT_EQ(name.IsLegal(), c.legal) << c.text.ToUtf8();
        EXPECT_EQ(name.MakeLegal().GetText(), c.made) << c.text.ToUtf8();
    }
}

TEST(RelativeLocationTest, ParsesNamesAndRefusesWhatIsNotRelative) {
    const RelativeLocation names = RelativeLocation::Parse("a//b/");
    EXPECT_EQ(names.GetNameCount(), 2u);
    EXPECT_EQ(names.GetPathText(), "a/b");
    const RelativeLocation absolute = RelativeLocation::Parse("/a");
    EXPECT_EQ(absolute.GetStatus(), ::IO::kInvalidLocation);
    EXPECT_EQ(absolute.GetDisplayText(), "/a");
    EXPECT_FALSE(absolute.IsLegal());
    RelativeLocation appended;
    EXPECT_EQ(appended.Append(Name(UniString("x/y"))), ::IO::kInvalidLocation);
    EXPECT_EQ(appended.Append(Name()), ::IO::kInvalidLocation);
    EXPECT_TRUE(appended.IsEmpty());
}

TEST(LocationTest, ParsesAbsolutePathsOnly) {
    const struct {
        const char* text;
        ::IO::Status status;
        const char* display;
        std::size_t names;
    } kCases[] = {
        {"/a/b", ::IO::kSuccess, "/a/b", 2},
        {"//a///b/", ::IO::kSuccess, "/a/b", 2},
        {"/", ::IO::kSuccess, "/", 0},
        {"/./..", ::IO::kSuccess, "/./..", 2},
        {"a/b", ::IO::kInvalidLocation, "a/b", 0},
        {"", ::IO::kInvalidLocation, "", 0},
    };
    for (const auto& c : kCases) {
        const Location location = Location::Parse(c.text);
        EXPECT_EQ(location.GetStatus(), c.status) << c.text;
        EXPECT_EQ(location.GetDisplayText(), c.display) << c.text;
        EXPECT_EQ(location.GetNameCount(), c.names) << c.text;
    }
    Location failed = Location::Parse("a");
    EXPECT_EQ(failed.Append(Name(UniString("b"))), ::IO::kInvalidLocation);
}

TEST(LocationTest, IsLegalUpToThePathLimit) {
    // "/" + 15 names of 255 bytes and a separator each = 3841 bytes.
    Location location;
    for (int i = 0; i < 15; ++i) ASSERT_EQ(location.Append(Name(Repeated("n", 255))), 0u);
    Location longest = location;
    ASSERT_EQ(longest.Append(Name(Repeated("n", Location::kMaxPathByteCount - 3841))), 0u);
    Location tooLong = location;
    ASSERT_EQ(tooLong.Append(Name(Repeated("n", Location::kMaxPathByteCount - 3840))), 0u);
    EXPECT_TRUE(longest.IsLegal());
    EXPECT_FALSE(tooLong.IsLegal());
    EXPECT_FALSE(Location::Parse("/a/b?").IsLegal());
}

TEST(LocationTest, TakesApartAndComparesByWholeNames) {
    Location location = Location::Parse("/a/b");
    Name last;
    ASSERT_EQ(location.GetLastName(last), ::IO::kSuccess);
    EXPECT_EQ(last.GetText(), "b");
    ASSERT_EQ(location.RemoveLastName(), ::IO::kSuccess);
    EXPECT_EQ(location, Location::Parse("/a"));
    EXPECT_TRUE(location.IsAncestorOf(Location::Parse("/a/b/c")));
    EXPECT_FALSE(location.IsAncestorOf(Location::Parse("/a")));
    EXPECT_FALSE(location.IsAncestorOf(Location::Parse("/ab")));
    EXPECT_TRUE(Location().IsAncestorOf(location));
    Location root;
    EXPECT_EQ(root.RemoveLastName(), ::IO::kInvalidLocation);
    EXPECT_EQ(root.GetLastName(last), ::IO::kInvalidLocation);
}

TEST(FileSystemTest, EntryInfoFollowsLinksAndReportsAbsenceAsAnAnswer) {
    Morvelan::Testing::ScopedTempFolder folder;
    std::ofstream(folder.PathOf("file")) << "12345";
    std::filesystem::create_symlink(folder.PathOf("file"), folder.PathOf("link"));
    std::filesystem::create_symlink(folder.PathOf("gone"), folder.PathOf("dangling"));
    const struct {
        std::string path;
        bool exists, isFolder, isFile, isLink;
        Yr::UInt64 size;
    } kCases[] = {
        {folder.PathOf("file"), true, false, true, false, 5},
        {folder.GetPath(), true, true, false, false, 0},
        {folder.PathOf("link"), true, false, true, true, 5},
        {folder.PathOf("dangling"), true, false, false, true, 0},
        {folder.PathOf("missing"), false, false, false, false, 0},
        {folder.PathOf("file/inner"), false, false, false, false, 0},
    };
    auto& fileSystem = ::IO::FileSystem::Get();
    for (const auto& c : kCases) {
        ::IO::FileSystem::EntryInfo info;
        ASSERT_EQ(fileSystem.GetEntryInfo(c.path, info), ::IO::kSuccess) << c.path;
        EXPECT_EQ(info.exists, c.exists) << c.path;
        EXPECT_EQ(info.isFolder, c.isFolder) << c.path;
        EXPECT_EQ(info.isFile, c.isFile) << c.path;
        EXPECT_EQ(info.isSymbolicLink, c.isLink) << c.path;
        if (c.isFile) {
            EXPECT_EQ(info.size, c.size) << c.path;
        }
    }
}

// Claims the first `taken` names asked about exist, and remembers the last one.
class TakenNames : public ::IO::FileSystemWrapper {
public:
    TakenNames(::IO::FileSystem& target, int taken) : FileSystemWrapper(target), m_taken(taken) {}
    ::IO::Status GetEntryInfo(const std::string& path, EntryInfo& info) override {
        m_lastAsked = path;
        const ::IO::Status status = FileSystemWrapper::GetEntryInfo(path, info);
        if (m_taken-- > 0) info.exists = true;
        return status;
    }
    std::string m_lastAsked;

private:
    int m_taken;
};

TEST(FolderTest, GeneratedNameSkipsNamesInUse) {
    Morvelan::Testing::ScopedTempFolder folder;
    ::IO::Folder opened;
    ASSERT_EQ(::IO::Folder::Open(Location::Parse(folder.GetPath().c_str()), opened), 0u);
    TakenNames taken(::IO::FileSystem::Get(), 3);
    ::IO::ScopedFileSystem scope(taken);
    Name first, second;
    ASSERT_EQ(opened.GenerateUnusedName("pre", ".tmp", first), ::IO::kSuccess);
    EXPECT_EQ(folder.PathOf(first.GetText().ToUtf8()), taken.m_lastAsked);
    ASSERT_EQ(opened.GenerateUnusedName("pre", ".tmp", second), ::IO::kSuccess);
    EXPECT_NE(first, second);
    EXPECT_EQ(first.GetText().GetSubstring(0, 3), "pre");
    EXPECT_EQ(first.GetExtension(), "tmp");
}

TEST(WellKnownLocationsTest, ComeFromTheSystem) {
    Location location;
    ASSERT_EQ(::IO::WellKnownLocations::GetWorkingFolder(location), ::IO::kSuccess);
    EXPECT_EQ(location.GetDisplayText(), std::filesystem::current_path().c_str());
    ASSERT_EQ(::IO::WellKnownLocations::GetProgramFile(location), ::IO::kSuccess);
    Name name;
    ASSERT_EQ(location.GetLastName(name), ::IO::kSuccess);
    EXPECT_EQ(name.GetText(), "InputOutputTests");
    Location folder;
    ASSERT_EQ(::IO::WellKnownLocations::GetProgramFolder(folder), ::IO::kSuccess);
    EXPECT_TRUE(folder.IsAncestorOf(location));
    EXPECT_EQ(folder.GetNameCount() + 1, location.GetNameCount());
}

}  // namespace
