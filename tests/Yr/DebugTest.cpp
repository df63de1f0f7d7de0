#include "Yr/Debug.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class CapturingSink final : public Yr::DebugSink {
public:
    void Write(std::string_view text) override { m_text.append(text); }
    std::string m_text;
};

TEST(DebugTest, PrintsToTheInstalledSinkAndToStandardErrorAfterwards) {
    CapturingSink sink;
    Yr::DebugSink* const previous = Yr::SetDebugSink(&sink);
    Yr::DBPrintf("copied %lu of %llu bytes to '%T'\n", 3u, Yr::UInt64{5}, Yr::UniString("a"));
    EXPECT_EQ(sink.m_text, "copied 3 of 5 bytes to 'a'\n");

    EXPECT_EQ(Yr::SetDebugSink(previous), &sink);
    testing::internal::CaptureStderr();
    Yr::DBPrintf("after %d\n", -1);
    const std::string standardError = testing::internal::GetCapturedStderr();
    EXPECT_EQ(standardError, "after -1\n");
    EXPECT_EQ(sink.m_text, "copied 3 of 5 bytes to 'a'\n");
}

TEST(DebugTest, NullSinkRestoresStandardError) {
    CapturingSink sink;
    Yr::DebugSink* const previous = Yr::SetDebugSink(&sink);
    Yr::SetDebugSink(nullptr);
    testing::internal::CaptureStderr();
    Yr::DBPrintf("plain\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "plain\n");
    EXPECT_TRUE(sink.m_text.empty());
    Yr::SetDebugSink(previous);
}

}  // namespace
