#include "Common/IO/UpdateFileTransaction.h"

#include "Common/IO/FileTransactionException.h"
#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/UpdateFileTransaction";

}  // namespace

UpdateFileTransaction::UpdateFileTransaction(const ::IO::Location& location)
    : m_fileLocation(location) {
    try {
        CheckLocation(location, kSourceUnit, __LINE__);
        if (Exists(m_fileLocation)) MoveToBackup();
    } catch (const Yr::OutOfMemoryException&) {
        throw;
    } catch (const Yr::YrException& e) {
        throw FileTransactionException(
            Describe("Failed to start update file transaction on file: '%T'."), kSourceUnit,
            __LINE__, e, Yr::kIOErrorCode);
    }
}

UpdateFileTransaction::~UpdateFileTransaction() noexcept(false) {
    End();
}

void UpdateFileTransaction::Commit() {
    RunGuarded(
        [&] {
            CheckActive(kSourceUnit, __LINE__);
            if (HasBackup()) Delete(m_backupLocation);
            MarkCommitted();
        },
        [&] { return Describe("Failed to commit update file transaction on file: '%T'."); },
        kSourceUnit, __LINE__);
}

void UpdateFileTransaction::Abort() {
    RunGuarded(
        [&] {
            CheckActive(kSourceUnit, __LINE__);
            if (Exists(m_fileLocation)) Delete(m_fileLocation);
            if (HasBackup()) Rename(m_backupLocation, GetName(m_fileLocation));
            MarkAborted();
        },
        [&] { return Describe("Failed to abort update file transaction on file: '%T'."); },
        kSourceUnit, __LINE__);
}

void UpdateFileTransaction::MoveToBackup() {
    const ::IO::Location backup = FindFreeBackupLocation();
    Rename(m_fileLocation, GetName(backup));
    m_backupLocation = backup;
}

::IO::Location UpdateFileTransaction::FindFreeBackupLocation() const {
    const ::IO::Location folder = GetParentLocation(m_fileLocation);
    const Yr::UniString name = GetName(m_fileLocation);
    ::IO::Location candidate = Concatenate(folder, Yr::UniString::Printf("%T.bak", name));
    // Older backups are left alone, however many there are.
    for (Yr::UInt32 number = 1; Exists(candidate); ++number)
        candidate = Concatenate(folder, Yr::UniString::Printf("%T.bak.%u", name, number));
    return candidate;
}

bool UpdateFileTransaction::HasBackup() const {
    return IsValid(m_backupLocation) && Exists(m_backupLocation);
}

Yr::UniString UpdateFileTransaction::Describe(const char* format) const {
    return Yr::UniString::Printf(format, m_fileLocation.GetDisplayText());
}

}  // namespace Morvelan::Common::IO
