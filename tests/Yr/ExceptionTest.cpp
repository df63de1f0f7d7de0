#include <memory>

#include <gtest/gtest.h>

#include "Yr/Exceptions.h"

namespace {

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

TEST(ExceptionTest, ClassesAreCaughtByTheirAncestorsOnly) {
    const Yr::IOException io("m", "U", 1, Yr::kIOErrorCode);
    const Yr::EndOfInputException endOfInput("m", "U", 1, Yr::kEndOfInputErrorCode);
    const Yr::DataIntegrityException integrity("m", "U", 1, Yr::kDataIntegrityErrorCode);
    const Yr::IllegalArgumentException argument("m", "U", 1, Yr::kIllegalArgumentErrorCode);
    const Yr::OutOfMemoryException memory("m", "U", 1, Yr::kOutOfMemoryErrorCode);

    EXPECT_TRUE(IsCaughtAs<Yr::GeneralException>(io));
    EXPECT_TRUE(IsCaughtAs<Yr::IOException>(endOfInput));
    EXPECT_TRUE(IsCaughtAs<Yr::IOException>(integrity));
    EXPECT_FALSE(IsCaughtAs<Yr::EndOfInputException>(integrity));
    EXPECT_FALSE(IsCaughtAs<Yr::IOException>(argument));
    EXPECT_TRUE(IsCaughtAs<Yr::GeneralException>(argument));
    // Out of memory stands beside the general family: handlers of general faults must not
    // swallow it.
    EXPECT_FALSE(IsCaughtAs<Yr::GeneralException>(memory));
    EXPECT_TRUE(IsCaughtAs<Yr::YrException>(memory));
}

TEST(ExceptionTest, InterruptedIOExceptionHasBothParentsAndOneRoot) {
    const Yr::InterruptedIOException interrupted("Sleep interrupted.", "U", 3, Yr::kIOErrorCode);

    EXPECT_TRUE(IsCaughtAs<Yr::IOException>(interrupted));
    EXPECT_TRUE(IsCaughtAs<Yr::InterruptedException>(interrupted));
    EXPECT_STREQ(interrupted.GetName(), "InterruptedIOException");

    const Yr::YrException& viaIO = static_cast<const Yr::IOException&>(interrupted);
    const Yr::YrException& viaInterrupted =
        static_cast<const Yr::InterruptedException&>(interrupted);
    EXPECT_EQ(&viaIO, &viaInterrupted);
    EXPECT_EQ(viaInterrupted.GetMessage(), Yr::UniString("Sleep interrupted."));
}

TEST(ExceptionTest, CauseOfCauseSurvivesCopying) {
    std::unique_ptr<Yr::IllegalArgumentException> copy;
    {
        const Yr::DataIntegrityException inner("Checksum differs.", "Yr/Inner", 11,
                                               Yr::kDataIntegrityErrorCode);
        const Yr::IOException middle("Read failed.", "Yr/Middle", 22, inner, Yr::kIOErrorCode);
        const Yr::IllegalArgumentException outer("Invalid input.", "Yr/Outer", 33, middle,
                                                 Yr::kIllegalArgumentErrorCode);
        copy = std::make_unique<Yr::IllegalArgumentException>(outer);
    }
    // The originals are gone: the copy must own its whole chain.
    ASSERT_NE(copy->GetCause(), nullptr);
    const Yr::YrException* copiedInner = copy->GetCause()->GetCause();
    ASSERT_NE(copiedInner, nullptr);
    EXPECT_STREQ(copiedInner->GetName(), "DataIntegrityException");
    EXPECT_EQ(copiedInner->GetMessage(), Yr::UniString("Checksum differs."));
    EXPECT_EQ(copiedInner->GetLineNumber(), 11u);
    EXPECT_EQ(copiedInner->GetErrorCode(), Yr::kDataIntegrityErrorCode);
    EXPECT_EQ(copiedInner->GetCause(), nullptr);
}

TEST(ExceptionTest, NullSourceFileAndMessageBecomeEmpty) {
    const Yr::IOException narrow(static_cast<const char*>(nullptr), nullptr, 1, Yr::kIOErrorCode);
    const Yr::IOException text(Yr::UniString("m"), nullptr, 2, narrow, Yr::kIOErrorCode);

    EXPECT_STREQ(narrow.GetFileName(), "");
    EXPECT_TRUE(narrow.GetMessage().IsEmpty());
    EXPECT_STREQ(text.GetFileName(), "");
    EXPECT_STREQ(text.GetCause()->GetFileName(), "");
}

}  // namespace
