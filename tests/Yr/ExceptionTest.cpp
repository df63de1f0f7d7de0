#include <memory>

#include <gtest/gtest.h>

#include "tests/support/ExpectYrException.h"

#include "Yr/Exceptions.h"

namespace {

using Morvelan::Testing::IsCaughtAs;

TEST(ExceptionTest, ClassesAreCaughtByTheirAncestorsOnly) {
    const Yr::DataIntegrityException integrity("m", "U", 1, Yr::kDataIntegrityErrorCode);
    const Yr::OutOfMemoryException memory("m", "U", 1, Yr::kOutOfMemoryErrorCode);
    const Yr::InterruptedIOException interrupted("m", "U", 1, Yr::kIOErrorCode);
    EXPECT_TRUE(IsCaughtAs<Yr::IOException>(integrity));
    EXPECT_FALSE(IsCaughtAs<Yr::EndOfInputException>(integrity));
    // Out of memory stands beside the general family: its handlers must not swallow it.
    EXPECT_FALSE(IsCaughtAs<Yr::GeneralException>(memory));
    EXPECT_TRUE(IsCaughtAs<Yr::YrException>(memory));
    // Two parents and one root: a root reached along two paths would be ambiguous and not catch.
    EXPECT_TRUE(IsCaughtAs<Yr::IOException>(interrupted));
    EXPECT_TRUE(IsCaughtAs<Yr::InterruptedException>(interrupted));
    EXPECT_TRUE(IsCaughtAs<Yr::YrException>(interrupted));
}

TEST(ExceptionTest, CauseOfCauseSurvivesCopying) {
    std::unique_ptr<Yr::IOException> copy;
    {
        const Yr::DataIntegrityException inner("Checksum differs.", "Yr/Inner", 11,
                                               Yr::kDataIntegrityErrorCode);
        const Yr::IOException middle(static_cast<const char*>(nullptr), "Yr/Middle", 22, inner,
                                     Yr::kIOErrorCode);
        copy = std::make_unique<Yr::IOException>(
            Yr::IOException("Invalid input.", nullptr, 33, middle, Yr::kIOErrorCode));
    }
    // The originals are gone: the copy must own its whole chain.
    EXPECT_STREQ(copy->GetFileName(), "");                  // no source file given
    EXPECT_TRUE(copy->GetCause()->GetMessage().IsEmpty());  // no message given
    const Yr::YrException* copiedInner = copy->GetCause()->GetCause();
    ASSERT_NE(copiedInner, nullptr);
    EXPECT_STREQ(copiedInner->GetName(), "DataIntegrityException");
    EXPECT_EQ(copiedInner->GetMessage(), Yr::UniString("Checksum differs."));
}

}  // namespace
