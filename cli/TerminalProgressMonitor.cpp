#include "cli/TerminalProgressMonitor.h"

#include <algorithm>

namespace Morvelan::Tool {
namespace {

constexpr int kBarWidth = 24;
// Back to the line's start, and erase what a longer line before left.
constexpr const char* kLineStart = "\r";
constexpr const char* kEraseRest = "\033[K";

std::string FormatBytes(double bytes) {
    static const char* const kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    int unit = 0;
    while (bytes >= 1024 && unit < 4) {
        bytes /= 1024;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
    return text;
}

std::string FormatDuration(double seconds) {
    const auto whole = static_cast<unsigned long long>(seconds + 0.5);
    char text[32];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%llu:%02llu:%02llu", whole / 3600, whole / 60 % 60,
                      whole % 60);
    else
        std::snprintf(text, sizeof text, "%llu:%02llu", whole / 60, whole % 60);
    return text;
}

std::string FormatBar(double fraction) {
    std::string bar(kBarWidth + 2, '.');
    bar.front() = '[';
    bar.back() = ']';
    std::fill_n(bar.begin() + 1, static_cast<int>(fraction * kBarWidth), '#');
    return bar;
}

}  // namespace

TerminalProgressMonitor::TerminalProgressMonitor(std::FILE* stream, bool enabled,
                                                 const std::atomic<bool>& canceled, Clock clock)
    : m_stream(stream),
      m_enabled(enabled),
      m_canceled(canceled),
      m_clock(std::move(clock)),
      m_start(m_clock()),
      m_lastDraw(m_start) {}

bool TerminalProgressMonitor::IsCanceled() const {
    return m_canceled.load(std::memory_order_relaxed);
}

void TerminalProgressMonitor::SetProgress(Yr::UInt64 progress) {
    AbstractProgressMonitor::SetProgress(progress);
    if (!m_enabled) return;
    const auto now = m_clock();
    if (!m_drawn || now - m_lastDraw >= kRedrawInterval) Draw(now);
}

void TerminalProgressMonitor::Started() {
    m_start = m_clock();
    if (m_enabled) Draw(m_start);
}

void TerminalProgressMonitor::Done() {
    if (!m_enabled) return;
    Draw(m_clock());
    std::fputs("\n", m_stream);
    std::fflush(m_stream);
    m_drawn = false;
}

void TerminalProgressMonitor::Failed(const Yr::YrException&) {
    Clear();
}

void TerminalProgressMonitor::Clear() {
    if (!m_drawn) return;
    std::fprintf(m_stream, "%s%s", kLineStart, kEraseRest);
    std::fflush(m_stream);
    m_drawn = false;
}

void TerminalProgressMonitor::Draw(std::chrono::steady_clock::time_point now) {
    const std::string line = FormatLine(GetProgress(), GetMaximum(), now - m_start);
    std::fprintf(m_stream, "%s%s%s", kLineStart, line.c_str(), kEraseRest);
    std::fflush(m_stream);
    m_lastDraw = now;
    m_drawn = true;
}

std::string TerminalProgressMonitor::FormatLine(Yr::UInt64 progress, Yr::UInt64 maximum,
                                                std::chrono::steady_clock::duration elapsed) {
    const double seconds = std::chrono::duration<double>(elapsed).count();
    const double rate = seconds > 0 ? static_cast<double>(progress) / seconds : 0;
    const std::string speed = rate > 0 ? FormatBytes(rate) + "/s" : "-- B/s";
    std::string line = FormatBytes(static_cast<double>(progress));
    if (maximum == 0) return line.append("  ").append(speed);
    const double fraction =
        std::min(1.0, static_cast<double>(progress) / static_cast<double>(maximum));
    char percent[8];
    std::snprintf(percent, sizeof percent, "%3d%%", static_cast<int>(fraction * 100));
    line.append(" / ").append(FormatBytes(static_cast<double>(maximum))).append(" ");
    line.append(FormatBar(fraction)).append(" ").append(percent).append("  ").append(speed);
    if (progress >= maximum) return line.append("  done");
    if (rate == 0) return line.append("  --:-- left");
    return line.append("  ")
        .append(FormatDuration(static_cast<double>(maximum - progress) / rate))
        .append(" left");
}

}  // namespace Morvelan::Tool
