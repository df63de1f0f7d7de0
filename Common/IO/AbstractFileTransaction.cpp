#include "Common/IO/AbstractFileTransaction.h"

#include "Common/ExceptionPrinting.h"
#include "Common/IO/FileTransactionException.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {

void AbstractFileTransaction::CheckActive(const char* sourceFile, Yr::UInt32 line) const {
    if (m_committed)
        throw FileTransactionException("File transaction is not active: transaction is committed.",
                                       sourceFile, line, Yr::kIOErrorCode);
    if (m_aborted)
        throw FileTransactionException("File transaction is not active: transaction is aborted.",
                                       sourceFile, line, Yr::kIOErrorCode);
}

void AbstractFileTransaction::End() {
    if (m_committed || m_aborted) return;
    try {
        Abort();
    } catch (const Yr::OutOfMemoryException&) {
        // Printing needs memory too; a destructor has no better option.
    } catch (const Yr::YrException& e) {
        DebugPrintEx(e);
    }
}

void AbstractFileTransaction::RunGuarded(const std::function<void()>& steps,
                                         const std::function<Yr::UniString()>& message,
                                         const char* sourceFile, Yr::UInt32 line) {
    try {
        steps();
    } catch (const Yr::OutOfMemoryException&) {
        throw;
    } catch (const Yr::YrException& e) {
        throw FileTransactionException(message(), sourceFile, line, e, Yr::kIOErrorCode);
    }
}

}  // namespace Morvelan::Common::IO
