// What the progress bar draws, and when, on a stream in memory.
#include "cli/TerminalProgressMonitor.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Yr/Exceptions.h"

namespace {

using Morvelan::Tool::TerminalProgressMonitor;
using std::chrono::milliseconds;
using std::chrono::seconds;
using TimePoint = std::chrono::steady_clock::time_point;

constexpr Yr::UInt64 kMiB = 1 << 20;

TEST(TerminalProgressMonitorTest, FormatsTheLine) {
    struct Case {
        Yr::UInt64 progress, maximum;
        milliseconds elapsed;
        const char* line;
    };
    const Case cases[] = {
        {0, 0, milliseconds(0), "0 B  -- B/s"},
        {1536, 0, seconds(1), "1.5 KiB  1.5 KiB/s"},
        {0, 100, milliseconds(0),
         "0 B / 100 B [........................]   0%  -- B/s  --:-- left"},
        {50 * kMiB, 100 * kMiB, seconds(2),
         "50.0 MiB / 100.0 MiB [############............]  50%  25.0 MiB/s  0:02 left"},
        {kMiB, 10240 * kMiB, seconds(1),
         "1.0 MiB / 10.0 GiB [........................]   0%  1.0 MiB/s  2:50:39 left"},
        {100, 100, seconds(1), "100 B / 100 B [########################] 100%  100 B/s  done"},
        // A file that grew while it was read: never past the bar's end.
        {150, 100, seconds(1), "150 B / 100 B [########################] 100%  150 B/s  done"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TerminalProgressMonitor::FormatLine(c.progress, c.maximum, c.elapsed), c.line);
}

// A monitor drawing into memory, on a clock the test moves.
class DrawingTest : public testing::Test {
protected:
    void TearDown() override {
        std::fclose(m_stream);
        std::free(m_text);
    }
    TerminalProgressMonitor Make(bool enabled) {
        return TerminalProgressMonitor(m_stream, enabled, m_canceled, [this] { return m_now; });
    }
    std::string Drawn() {
        std::fflush(m_stream);
        return std::string(m_text, m_size);
    }

    char* m_text = nullptr;
    std::size_t m_size = 0;
    std::FILE* m_stream = open_memstream(&m_text, &m_size);
    std::atomic<bool> m_canceled{false};
    TimePoint m_now{};
};

TEST_F(DrawingTest, RedrawsAtMostFiveTimesASecond) {
    TerminalProgressMonitor monitor = Make(true);
    monitor.SetMaximum(100);
    monitor.Started();
    for (Yr::UInt64 i = 1; i <= 50; ++i) monitor.SetProgress(i);
    EXPECT_EQ(Drawn(), "\r0 B / 100 B [........................]   0%  -- B/s  --:-- left\033[K");
    m_now += milliseconds(200);
    monitor.SetProgress(51);
    monitor.SetProgress(52);
    const std::string drawn = Drawn();
    EXPECT_EQ(drawn.substr(drawn.rfind('\r')),
              "\r51 B / 100 B [############............]  51%  255 B/s  0:00 left\033[K");
    monitor.Done();
    EXPECT_EQ(Drawn().substr(Drawn().rfind('\r')),
              "\r52 B / 100 B [############............]  52%  260 B/s  0:00 left\033[K\n");
}

TEST_F(DrawingTest, FailureTakesTheBarAwayAndCancelFollowsTheFlag) {
    TerminalProgressMonitor monitor = Make(true);
    monitor.Started();
    monitor.Failed(Yr::IOException("Disk full.", "test", 1, -7003));
    EXPECT_EQ(Drawn(), "\r0 B  -- B/s\033[K\r\033[K");
    monitor.Clear();  // nothing left to take away
    EXPECT_EQ(Drawn().size(), 19u);
    EXPECT_FALSE(monitor.IsCanceled());
    m_canceled = true;
    EXPECT_TRUE(monitor.IsCanceled());
}

TEST_F(DrawingTest, DisabledDrawsNothingButStillCancels) {
    TerminalProgressMonitor monitor = Make(false);
    monitor.Started();
    monitor.SetProgress(10);
    m_now += seconds(5);
    monitor.SetProgress(20);
    monitor.Done();
    EXPECT_EQ(Drawn(), "");
    m_canceled = true;
    EXPECT_TRUE(monitor.IsCanceled());
}

}  // namespace
