#include "Yr/Debug.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/CapturedDebugOutput.h"

namespace {

TEST(DebugTest, PrintsToTheInstalledSinkElseToStandardError) {
    {
        Morvelan::Testing::CapturedDebugOutput output;
        Yr::DBPrintf("copied %lu of %llu bytes to '%T'\n", 3u, Yr::UInt64{5}, Yr::UniString("a"));
        EXPECT_EQ(output.GetText(), "copied 3 of 5 bytes to 'a'\n");
    }
    Yr::DebugSink* const previous = Yr::SetDebugSink(nullptr);
    testing::internal::CaptureStderr();
    Yr::DBPrintf("after %d\n", -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "after -1\n");
    Yr::SetDebugSink(previous);
}

}  // namespace
