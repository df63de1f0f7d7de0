#include <algorithm>
#include <cstddef>
#include <memory>

#include <gtest/gtest.h>

#include "tests/support/ExpectYrException.h"

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

using namespace Morvelan::Common::Containers;
using namespace Morvelan::Common::IO;
using Morvelan::Testing::IsCaughtAs;

template <std::size_t N>
struct Literal {
    constexpr Literal(const char (&text)[N]) { std::copy_n(text, N, value); }  // NOLINT
    char value[N];
};

// The narrowest of the library's wide catch clauses that takes a class.
enum class Family { General, BlockStorage, IO, FileSystem };

template <class Exception, Literal Name, Family Kind>
struct Case {
    using Type = Exception;
    static constexpr const char* kName = Name.value;
    static constexpr Family kFamily = Kind;
};

using Cases = ::testing::Types<
    Case<BlockManagerException, "BlockManagerException", Family::BlockStorage>,
    Case<BlockFileException, "BlockFileException", Family::BlockStorage>,
    Case<BlockNotFoundException, "BlockNotFoundException", Family::BlockStorage>,
    Case<BTreeIntegrityException, "BTreeIntegrityException", Family::General>,
    Case<InflaterException, "InflaterException", Family::General>,
    Case<ArchiveException, "ArchiveException", Family::IO>,
    Case<ZipException, "ZipException", Family::IO>,
    Case<IntegerSerializerException, "IntegerSerializerException", Family::IO>,
    Case<FileTransactionException, "FileTransactionException", Family::IO>,
    Case<FileSystemException, "FileSystemException", Family::FileSystem>,
    Case<AccessDeniedException, "AccessDeniedException", Family::FileSystem>,
    Case<DiskFullException, "DiskFullException", Family::FileSystem>,
    Case<FileAlreadyExistsException, "FileAlreadyExistsException", Family::FileSystem>,
    Case<FileNotFoundException, "FileNotFoundException", Family::FileSystem>,
    Case<FolderAlreadyExistsException, "FolderAlreadyExistsException", Family::FileSystem>,
    Case<FolderNotFoundException, "FolderNotFoundException", Family::FileSystem>,
    Case<NotFileException, "NotFileException", Family::FileSystem>,
    Case<NotFolderException, "NotFolderException", Family::FileSystem>>;

// Equal in every field, down the chain of causes, each cause an object of its own.
void ExpectEqualChains(const Yr::YrException* actual, const Yr::YrException* expected) {
    ASSERT_EQ(actual == nullptr, expected == nullptr);
    if (expected == nullptr) return;
    EXPECT_NE(actual, expected);
    EXPECT_STREQ(actual->GetName(), expected->GetName());
    EXPECT_EQ(actual->GetMessage(), expected->GetMessage());
    EXPECT_STREQ(actual->GetFileName(), expected->GetFileName());
    EXPECT_EQ(actual->GetLineNumber(), expected->GetLineNumber());
    EXPECT_EQ(actual->GetErrorCode(), expected->GetErrorCode());
    ExpectEqualChains(actual->GetCause(), expected->GetCause());
}

template <class C>
class ExceptionFamilyTest : public ::testing::Test {};
TYPED_TEST_SUITE(ExceptionFamilyTest, Cases);

TYPED_TEST(ExceptionFamilyTest, NamedAfterItsClassAndClonedOrCopiedWithItsCause) {
    using E = typename TypeParam::Type;
    const Yr::IOException cause("Disk went away.", "Common/IO/Inner", 17, Yr::kIOErrorCode);
    const E original("Größe fehlt.", "Common/IO/Unit", 99, cause, Yr::kOutOfMemoryErrorCode);
    const Yr::YrException& root = original;
    EXPECT_STREQ(root.GetName(), TypeParam::kName);
    EXPECT_EQ(original.GetMessage().ToUtf8(), "Größe fehlt.");
    EXPECT_EQ(original.GetErrorCode(), Yr::kOutOfMemoryErrorCode);
    ExpectEqualChains(original.GetCause(), &cause);

    const std::unique_ptr<Yr::YrException> clone(root.Clone());
    EXPECT_NE(dynamic_cast<const E*>(clone.get()), nullptr);
    ExpectEqualChains(clone.get(), &original);
    const E copy(original);
    ExpectEqualChains(&copy, &original);
}

TYPED_TEST(ExceptionFamilyTest, CaughtByTheClausesOfItsFamily) {
    using E = typename TypeParam::Type;
    const E exception("Cannot go on.", "Common/IO/Unit", 5, Yr::kIOErrorCode);
    const Family family = TypeParam::kFamily;
    EXPECT_TRUE(IsCaughtAs<Yr::GeneralException>(exception));
    EXPECT_EQ(IsCaughtAs<Yr::IOException>(exception),
              family == Family::IO || family == Family::FileSystem);
    EXPECT_EQ(IsCaughtAs<FileSystemException>(exception), family == Family::FileSystem);
    EXPECT_EQ(IsCaughtAs<BlockManagerException>(exception), family == Family::BlockStorage);
    EXPECT_TRUE(IsCaughtAs<std::exception>(exception));
}

}  // namespace
