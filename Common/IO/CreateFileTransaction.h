#pragma once

#include "Common/IO/AbstractFileTransaction.h"
#include "InputOutput/Location.h"

namespace Morvelan::Common::IO {

// Guards the creation of one file: the caller creates it after opening the
// transaction, and an abort deletes it again.
class CreateFileTransaction : public AbstractFileTransaction {
public:
    explicit CreateFileTransaction(const ::IO::Location& location);
    ~CreateFileTransaction() noexcept(false) override;

    const ::IO::Location& GetFileLocation() const { return m_fileLocation; }

    void Commit() override;
    void Abort() override;

private:
    ::IO::Location m_fileLocation;
};

}  // namespace Morvelan::Common::IO
