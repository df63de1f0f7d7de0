#include "Common/IO/CreateFileTransaction.h"

#include "Common/IO/IOUtilities.h"
#include "Common/IO/LocationUtils.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/CreateFileTransaction";

}  // namespace

CreateFileTransaction::CreateFileTransaction(const ::IO::Location& location)
    : m_fileLocation(location) {
    CheckLocation(location, kSourceUnit, __LINE__);
}

CreateFileTransaction::~CreateFileTransaction() noexcept(false) {
    End();
}

void CreateFileTransaction::Commit() {
    RunGuarded(
        [&] {
            CheckActive(kSourceUnit, __LINE__);
            MarkCommitted();
        },
        [&] {
            return Yr::UniString::Printf("Failed to commit create file transaction on file: '%T'.",
                                         m_fileLocation.GetDisplayText());
        },
        kSourceUnit, __LINE__);
}

void CreateFileTransaction::Abort() {
    RunGuarded(
        [&] {
            CheckActive(kSourceUnit, __LINE__);
            if (Exists(m_fileLocation)) Delete(m_fileLocation);
            MarkAborted();
        },
        [&] {
            return Yr::UniString::Printf("Failed to abort create file transaction on file: '%T'.",
                                         m_fileLocation.GetDisplayText());
        },
        kSourceUnit, __LINE__);
}

}  // namespace Morvelan::Common::IO
