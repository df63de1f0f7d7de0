#pragma once

#include <vector>

#include "Common/IO/AbstractFileTransaction.h"
#include "InputOutput/Location.h"
#include "Yr/PagedArray.h"
#include "Yr/Types.h"

namespace Morvelan::Common::IO {

// Guards the creation of several files: an abort deletes every enlisted
// file that exists, in enlisting order.
class CreateFilesTransaction : public AbstractFileTransaction {
public:
    CreateFilesTransaction() = default;
    // The list must not be empty; every location is enlisted.
    explicit CreateFilesTransaction(const std::vector<::IO::Location>& locations);
    ~CreateFilesTransaction() noexcept(false) override;

    const Yr::PagedArray<::IO::Location>& GetFileLocations() const { return m_fileLocations; }

    // False when the location is enlisted already.
    bool EnlistFile(const ::IO::Location& location);
    // How many of the locations were not enlisted yet.
    Yr::UInt32 EnlistFiles(const std::vector<::IO::Location>& locations);

    void Commit() override;
    void Abort() override;

private:
    bool IsEnlisted(const ::IO::Location& location) const;

    Yr::PagedArray<::IO::Location> m_fileLocations;
};

}  // namespace Morvelan::Common::IO
