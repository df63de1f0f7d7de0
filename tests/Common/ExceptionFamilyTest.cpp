#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "Common/Containers/BTreeIntegrityException.h"
#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockManagerException.h"
#include "Common/Containers/BlockNotFoundException.h"
#include "Common/IO/AccessDeniedException.h"
#include "Common/IO/ArchiveException.h"
#include "Common/IO/DiskFullException.h"
#include "Common/IO/FileAlreadyExistsException.h"
#include "Common/IO/FileNotFoundException.h"
#include "Common/IO/FileSystemException.h"
#include "Common/IO/FileTransactionException.h"
#include "Common/IO/FolderAlreadyExistsException.h"
#include "Common/IO/FolderNotFoundException.h"
#include "Common/IO/InflaterException.h"
#include "Common/IO/IntegerSerializerException.h"
#include "Common/IO/NotFileException.h"
#include "Common/IO/NotFolderException.h"
#include "Common/IO/ZipException.h"

namespace {

namespace Containers = Morvelan::Common::Containers;
namespace MIO = Morvelan::Common::IO;

template <std::size_t N>
struct Literal {
    constexpr Literal(const char (&text)[N]) { std::copy_n(text, N, value); }  // NOLINT
    char value[N];
};

// The narrowest of the library's wide catch clauses that takes a class.
enum class Family { General, BlockStorage, IO, FileSystem };

template <class Exception, class DirectBase, Literal Name, Family Kind>
struct Case {
    using Type = Exception;
    using Base = DirectBase;
    static constexpr const char* kName = Name.value;
    static constexpr Family kFamily = Kind;
};

using FamilyCases = ::testing::Types<
    Case<Containers::BlockManagerException, Yr::GeneralException, "BlockManagerException",
         Family::BlockStorage>,
    Case<Containers::BlockFileException, Containers::BlockManagerException, "BlockFileException",
         Family::BlockStorage>,
    Case<Containers::BlockNotFoundException, Containers::BlockManagerException,
         "BlockNotFoundException", Family::BlockStorage>,
    Case<Containers::BTreeIntegrityException, Yr::GeneralException, "BTreeIntegrityException",
         Family::General>,
    Case<MIO::ArchiveException, Yr::IOException, "ArchiveException", Family::IO>,
    Case<MIO::ZipException, Yr::IOException, "ZipException", Family::IO>,
    Case<MIO::InflaterException, Yr::GeneralException, "InflaterException", Family::General>,
    Case<MIO::IntegerSerializerException, Yr::IOException, "IntegerSerializerException",
         Family::IO>,
    Case<MIO::FileTransactionException, Yr::IOException, "FileTransactionException", Family::IO>,
    Case<MIO::FileSystemException, Yr::IOException, "FileSystemException", Family::IO>,
    Case<MIO::AccessDeniedException, MIO::FileSystemException, "AccessDeniedException",
         Family::FileSystem>,
    Case<MIO::DiskFullException, MIO::FileSystemException, "DiskFullException", Family::FileSystem>,
    Case<MIO::FileAlreadyExistsException, MIO::FileSystemException, "FileAlreadyExistsException",
         Family::FileSystem>,
    Case<MIO::FileNotFoundException, MIO::FileSystemException, "FileNotFoundException",
         Family::FileSystem>,
    Case<MIO::FolderAlreadyExistsException, MIO::FileSystemException,
         "FolderAlreadyExistsException", Family::FileSystem>,
    Case<MIO::FolderNotFoundException, MIO::FileSystemException, "FolderNotFoundException",
         Family::FileSystem>,
    Case<MIO::NotFileException, MIO::FileSystemException, "NotFileException", Family::FileSystem>,
    Case<MIO::NotFolderException, MIO::FileSystemException, "NotFolderException",
         Family::FileSystem>>;

template <class Catch, class Thrown>
bool IsCaughtAs(const Thrown& exception) {
    try {
        throw exception;
    } catch (const Catch&) {
        return true;
    } catch (...) {
        return false;
    }
}

const Yr::IOException& TheCause() {
    static const Yr::IOException cause("Disk went away.", "Common/IO/Inner", 17, Yr::kIOErrorCode);
    return cause;
}

void ExpectTheCause(const Yr::YrException* cause) {
    ASSERT_NE(cause, nullptr);
    EXPECT_NE(cause, &TheCause());  // an owned copy, not the caller's object
    EXPECT_STREQ(cause->GetName(), "IOException");
    EXPECT_EQ(cause->GetMessage(), Yr::UniString("Disk went away."));
    EXPECT_STREQ(cause->GetFileName(), "Common/IO/Inner");
    EXPECT_EQ(cause->GetLineNumber(), 17u);
    EXPECT_EQ(cause->GetErrorCode(), Yr::kIOErrorCode);
}

template <class C>
class ExceptionFamilyTest : public ::testing::Test {};
TYPED_TEST_SUITE(ExceptionFamilyTest, FamilyCases);

TYPED_TEST(ExceptionFamilyTest, GetNameIsTheClassName) {
    using E = typename TypeParam::Type;
    const E exception("m", "Common/IO/Unit", 1, Yr::kIOErrorCode);
    const Yr::YrException& root = exception;
    EXPECT_STREQ(root.GetName(), TypeParam::kName);
}

TYPED_TEST(ExceptionFamilyTest, FourConstructorsHandEverythingToTheRoot) {
    using E = typename TypeParam::Type;
    const char* const narrow = "Failed to read 'Größe'.";
    const Yr::UniString text(narrow);
    const E fromText(text, "Common/IO/A", 10, Yr::kIOErrorCode);
    const E fromTextWithCause(text, "Common/IO/B", 20, TheCause(), Yr::kIOErrorCode);
    const E fromNarrow(narrow, "Common/IO/C", 30, Yr::kIllegalArgumentErrorCode);
    const E fromNarrowWithCause(narrow, "Common/IO/D", 40, TheCause(), Yr::kOutOfMemoryErrorCode);

    const struct {
        const E& exception;
        const char* file;
        Yr::UInt32 line;
        int errorCode;
        bool hasCause;
    } kCases[] = {
        {fromText, "Common/IO/A", 10, -7003, false},
        {fromTextWithCause, "Common/IO/B", 20, -7003, true},
        {fromNarrow, "Common/IO/C", 30, -50, false},
        {fromNarrowWithCause, "Common/IO/D", 40, -108, true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.file);
        EXPECT_EQ(c.exception.GetMessage().ToUtf8(), std::string(narrow));
        EXPECT_STREQ(c.exception.GetFileName(), c.file);
        EXPECT_EQ(c.exception.GetLineNumber(), c.line);
        EXPECT_EQ(c.exception.GetErrorCode(), c.errorCode);
        if (c.hasCause)
            ExpectTheCause(c.exception.GetCause());
        else
            EXPECT_EQ(c.exception.GetCause(), nullptr);
    }
}

TYPED_TEST(ExceptionFamilyTest, CloneEqualsTheOriginal) {
    using E = typename TypeParam::Type;
    const E original("Cannot go on.", "Common/IO/Unit", 99, TheCause(), Yr::kIOErrorCode);
    const Yr::YrException& root = original;
    const std::unique_ptr<Yr::YrException> clone(root.Clone());

    ASSERT_NE(clone, nullptr);
    EXPECT_NE(dynamic_cast<const E*>(clone.get()), nullptr);
    EXPECT_STREQ(clone->GetName(), TypeParam::kName);
    EXPECT_EQ(clone->GetMessage(), Yr::UniString("Cannot go on."));
    EXPECT_STREQ(clone->GetFileName(), "Common/IO/Unit");
    EXPECT_EQ(clone->GetLineNumber(), 99u);
    EXPECT_EQ(clone->GetErrorCode(), Yr::kIOErrorCode);
    ExpectTheCause(clone->GetCause());
    EXPECT_NE(clone->GetCause(), original.GetCause());
}

TYPED_TEST(ExceptionFamilyTest, CopyAndMoveKeepTheCause) {
    using E = typename TypeParam::Type;
    E original("Cannot go on.", "Common/IO/Unit", 5, TheCause(), Yr::kIOErrorCode);

    const E copy(original);
    ExpectTheCause(copy.GetCause());
    ExpectTheCause(original.GetCause());
    EXPECT_NE(copy.GetCause(), original.GetCause());

    const E moved(std::move(original));
    ExpectTheCause(moved.GetCause());
    EXPECT_EQ(moved.GetMessage(), Yr::UniString("Cannot go on."));
    EXPECT_EQ(moved.GetLineNumber(), 5u);
}

TYPED_TEST(ExceptionFamilyTest, CatchClausesFollowTheFamily) {
    using E = typename TypeParam::Type;
    const E exception("Cannot go on.", "Common/IO/Unit", 5, Yr::kIOErrorCode);
    const Family family = TypeParam::kFamily;

    EXPECT_TRUE(IsCaughtAs<typename TypeParam::Base>(exception));
    EXPECT_TRUE(IsCaughtAs<Yr::GeneralException>(exception));
    EXPECT_EQ(IsCaughtAs<Yr::IOException>(exception),
              family == Family::IO || family == Family::FileSystem);
    EXPECT_EQ(IsCaughtAs<MIO::FileSystemException>(exception),
              family == Family::FileSystem || (std::is_same_v<E, MIO::FileSystemException>));
    EXPECT_EQ(IsCaughtAs<Containers::BlockManagerException>(exception),
              family == Family::BlockStorage);

    try {
        throw exception;
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), "Cannot go on.");
    } catch (...) {
        ADD_FAILURE() << "not caught as std::exception";
    }
}

}  // namespace
