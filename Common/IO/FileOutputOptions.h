#pragma once

#include "Common/IO/FileCreationMode.h"
#include "Common/IO/FileShare.h"
#include "Common/IO/FileWriteMode.h"
#include "Common/IO/RetryOptions.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// How a file is to be opened for output. Default constructed, every field is
// zero: no retries, creation-always, truncate, no sharing.
class FileOutputOptions {
public:
    FileOutputOptions() = default;

    // Shared instance: the default retry options, otherwise zeros.
    static const FileOutputOptions& GetDefault();

    const RetryOptions& GetAccessDeniedRetryOptions() const { return m_accessDeniedRetryOptions; }
    RetryOptions& GetAccessDeniedRetryOptions() { return m_accessDeniedRetryOptions; }
    const FileCreationMode& GetCreationMode() const { return m_creationMode; }
    FileCreationMode& GetCreationMode() { return m_creationMode; }
    const FileWriteMode& GetWriteMode() const { return m_writeMode; }
    FileWriteMode& GetWriteMode() { return m_writeMode; }
    const FileShare& GetShare() const { return m_share; }
    FileShare& GetShare() { return m_share; }

    FileOutputOptions& SetAccessDeniedRetryOptions(const RetryOptions& retryOptions);
    FileOutputOptions& SetCreationMode(FileCreationMode creationMode);
    FileOutputOptions& SetWriteMode(FileWriteMode writeMode);
    FileOutputOptions& SetShare(FileShare share);

    // False only for creation-new with append: there is nothing to append to
    // in a file that must not exist yet.
    bool IsValid() const;
    Yr::UniString ToString() const;

    bool operator==(const FileOutputOptions&) const = default;

private:
    RetryOptions m_accessDeniedRetryOptions;
    FileCreationMode m_creationMode;
    FileWriteMode m_writeMode;
    FileShare m_share;
};

}  // namespace Morvelan::Common::IO
