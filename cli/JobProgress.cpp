#include "cli/JobProgress.h"

#include <unistd.h>

#include <cstdio>

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "Yr/YrException.h"

namespace Morvelan::Tool {

JobProgress::JobProgress(bool quiet)
    : m_terminal(stderr, !quiet && isatty(STDERR_FILENO) == 1, m_interrupt.GetFlag()),
      m_compound(&m_terminal),
      m_finished(&m_compound),
      m_fileReporter(*this, &JobProgress::ReportFile),
      m_jobReporter(*this, &JobProgress::ReportJob) {}

// Sub-monitors leave detaching to the compound's owner.
JobProgress::~JobProgress() {
    if (m_file) m_compound.DetachProgressMonitor(&*m_file);
    m_compound.DetachProgressMonitor(&m_finished);
}

void JobProgress::Run(Yr::UInt64 totalBytes, const std::function<void()>& work) {
    m_finished.SetMaximum(totalBytes);
    m_compound.Started();
    try {
        work();
    } catch (const Yr::YrException& failure) {
        m_compound.Failed(failure);
        // The cancel surfaces wrapped in whatever the reading layers make of
        // it ("entry 'x': ..."): report it as what it was.
        if (m_terminal.IsCanceled())
            throw Yr::InterruptedException("Canceled.", "cli/JobProgress", __LINE__,
                                           Yr::kIOErrorCode);
        throw;
    }
    EndFile();
    m_compound.Done();
}

Common::ProgressMonitor& JobProgress::BeginFile() {
    EndFile();
    m_file.emplace(&m_compound);
    m_fileBytes = 0;
    return m_fileReporter;
}

// Detached first: the compound keeps its sums until the finished total's
// report, which then counts the file once.
void JobProgress::EndFile() {
    if (!m_file) return;
    m_compound.Done(&*m_file);
    m_compound.DetachProgressMonitor(&*m_file);
    m_file.reset();
    m_finishedBytes += m_fileBytes;
    m_fileBytes = 0;
    m_finished.SetProgress(m_finishedBytes);
}

void JobProgress::ReportFile(Yr::UInt64 bytes) {
    if (!m_file) return;
    m_fileBytes = bytes;
    m_file->SetProgress(bytes);
}

void JobProgress::ReportJob(Yr::UInt64 bytes) {
    if (m_file) return ReportFile(bytes - m_finishedBytes);
    m_finishedBytes = bytes;
    m_finished.SetProgress(bytes);
}

}  // namespace Morvelan::Tool
