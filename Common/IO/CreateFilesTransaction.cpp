#include "Common/IO/CreateFilesTransaction.h"

#include <algorithm>

#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/CreateFilesTransaction";

}  // namespace

CreateFilesTransaction::CreateFilesTransaction(const std::vector<::IO::Location>& locations) {
    CheckLocations(locations, kSourceUnit, __LINE__);
    EnlistFiles(locations);
}

CreateFilesTransaction::~CreateFilesTransaction() noexcept(false) {
    End();
}

bool CreateFilesTransaction::EnlistFile(const ::IO::Location& location) {
    CheckLocation(location, kSourceUnit, __LINE__);
    CheckActive(kSourceUnit, __LINE__);
    if (IsEnlisted(location)) return false;
    m_fileLocations.Add(location);
    return true;
}

Yr::UInt32 CreateFilesTransaction::EnlistFiles(const std::vector<::IO::Location>& locations) {
    // The list check refuses an empty list, which here only means nothing to add.
    if (!locations.empty()) CheckLocations(locations, kSourceUnit, __LINE__);
    CheckActive(kSourceUnit, __LINE__);
    Yr::UInt32 added = 0;
    for (const ::IO::Location& location : locations) {
        if (IsEnlisted(location)) continue;
        m_fileLocations.Add(location);
        ++added;
    }
    return added;
}

void CreateFilesTransaction::Commit() {
    RunGuarded(
        [&] {
            CheckActive(kSourceUnit, __LINE__);
            MarkCommitted();
        },
        [] { return Yr::UniString("Failed to commit create files transaction."); }, kSourceUnit,
        __LINE__);
}

void CreateFilesTransaction::Abort() {
    RunGuarded(
        [&] {
            CheckActive(kSourceUnit, __LINE__);
            for (const ::IO::Location& location : m_fileLocations)
                if (Exists(location)) Delete(location);
            MarkAborted();
        },
        [] { return Yr::UniString("Failed to abort create files transaction."); }, kSourceUnit,
        __LINE__);
}

bool CreateFilesTransaction::IsEnlisted(const ::IO::Location& location) const {
    return std::find(m_fileLocations.begin(), m_fileLocations.end(), location) !=
           m_fileLocations.end();
}

}  // namespace Morvelan::Common::IO
