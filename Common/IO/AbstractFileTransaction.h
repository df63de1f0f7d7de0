#pragma once

#include <functional>

#include "Common/IO/FileTransaction.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// The committed and aborted flags and the checks every transaction shares.
class AbstractFileTransaction : public FileTransaction {
public:
    AbstractFileTransaction(const AbstractFileTransaction&) = delete;
    AbstractFileTransaction& operator=(const AbstractFileTransaction&) = delete;

    bool IsCommitted() const override { return m_committed; }
    bool IsAborted() const override { return m_aborted; }

protected:
    AbstractFileTransaction() = default;

    // Throws FileTransactionException unless the transaction is active; the
    // origin is the caller's.
    void CheckActive(const char* sourceFile, Yr::UInt32 line) const;
    // For the destructors of the concrete classes, while Abort still
    // dispatches to them: aborts an active transaction without throwing.
    void End();

    // Runs the steps of a commit or abort; a failure is rethrown as
    // FileTransactionException with `message` and the failure as cause, an
    // out-of-memory exception unchanged.
    static void RunGuarded(const std::function<void()>& steps,
                           const std::function<Yr::UniString()>& message, const char* sourceFile,
                           Yr::UInt32 line);

    void MarkCommitted() { m_committed = true; }
    void MarkAborted() { m_aborted = true; }

private:
    bool m_committed = false;
    bool m_aborted = false;
};

}  // namespace Morvelan::Common::IO
