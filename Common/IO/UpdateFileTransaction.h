#pragma once

#include "Common/IO/AbstractFileTransaction.h"
#include "InputOutput/Location.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// Guards the rewriting of one file. Starting moves an existing file aside
// to the first free backup name ("name.bak", then "name.bak.1", ...), which
// leaves its name free for the new version; commit deletes the backup, abort
// deletes the new version and renames the backup back.
class UpdateFileTransaction : public AbstractFileTransaction {
public:
    explicit UpdateFileTransaction(const ::IO::Location& location);
    ~UpdateFileTransaction() noexcept(false) override;

    const ::IO::Location& GetFileLocation() const { return m_fileLocation; }

    void Commit() override;
    void Abort() override;

private:
    void MoveToBackup();
    ::IO::Location FindFreeBackupLocation() const;
    bool HasBackup() const;
    Yr::UniString Describe(const char* format) const;

    // Empty until a backup exists.
    ::IO::Location m_backupLocation;
    ::IO::Location m_fileLocation;
};

}  // namespace Morvelan::Common::IO
