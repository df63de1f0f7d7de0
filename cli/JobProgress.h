#pragma once

#include <functional>
#include <optional>

#include "Common/AbstractProgressMonitor.h"
#include "Common/CompoundProgressMonitor.h"
#include "Common/SubProgressMonitor.h"
#include "cli/InterruptRequest.h"
#include "cli/TerminalProgressMonitor.h"

namespace Morvelan::Tool {

// The progress of a job over many files, drawn on standard error when it is
// a terminal: each file reports through its own sub-monitor of one compound
// monitor, whose sums the terminal monitor draws. A finished file is folded
// into one sub-monitor holding the finished files' total, so the compound
// sums two members however many files there are. Ctrl-C cancels the job
// through IsCanceled.
class JobProgress final {
public:
    explicit JobProgress(bool quiet);
    ~JobProgress();
    JobProgress(const JobProgress&) = delete;
    JobProgress& operator=(const JobProgress&) = delete;

    // Runs `work` between Started and Done, or Failed when it throws;
    // `totalBytes` 0: the total is not known.
    void Run(Yr::UInt64 totalBytes, const std::function<void()>& work);
    // The monitor the next file reports its bytes done to, until EndFile.
    Common::ProgressMonitor& BeginFile();
    void EndFile();
    // For bytes counted over the whole job, such as an archive read entry
    // after entry: they go to the current file, or to the finished total
    // between files.
    Common::ProgressMonitor& GetJobMonitor() { return m_jobReporter; }
    // Answers IsCanceled for checks between reads.
    const Common::ProgressMonitor& GetCancelMonitor() const { return m_terminal; }
    // Takes the bar away before a line goes to the terminal.
    void Clear() { m_terminal.Clear(); }

private:
    // Passes SetProgress to one of the two Report functions below.
    class Reporter final : public Common::AbstractProgressMonitor {
    public:
        Reporter(JobProgress& job, void (JobProgress::*report)(Yr::UInt64))
            : m_job(job), m_report(report) {}
        bool IsCanceled() const override { return m_job.m_terminal.IsCanceled(); }
        void SetProgress(Yr::UInt64 progress) override { (m_job.*m_report)(progress); }

    private:
        JobProgress& m_job;
        void (JobProgress::*m_report)(Yr::UInt64);
    };

    void ReportFile(Yr::UInt64 bytes);
    void ReportJob(Yr::UInt64 bytes);

    InterruptRequest m_interrupt;
    TerminalProgressMonitor m_terminal;
    Common::CompoundProgressMonitor m_compound;
    Common::SubProgressMonitor m_finished;
    std::optional<Common::SubProgressMonitor> m_file;
    Reporter m_fileReporter;
    Reporter m_jobReporter;
    Yr::UInt64 m_finishedBytes = 0;
    Yr::UInt64 m_fileBytes = 0;
};

}  // namespace Morvelan::Tool
