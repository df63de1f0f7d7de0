#include "Common/IO/FileOutputOptions.h"

#include "Common/IO/SharedDefault.h"

namespace Morvelan::Common::IO {
namespace {

constinit SharedDefault<FileOutputOptions> s_default;

}  // namespace

const FileOutputOptions& FileOutputOptions::GetDefault() {
    return s_default.Get(
        [] { return FileOutputOptions().SetAccessDeniedRetryOptions(RetryOptions::GetDefault()); });
}

FileOutputOptions& FileOutputOptions::SetAccessDeniedRetryOptions(
    const RetryOptions& retryOptions) {
    m_accessDeniedRetryOptions = retryOptions;
    return *this;
}

FileOutputOptions& FileOutputOptions::SetCreationMode(FileCreationMode creationMode) {
    m_creationMode = creationMode;
    return *this;
}

FileOutputOptions& FileOutputOptions::SetWriteMode(FileWriteMode writeMode) {
    m_writeMode = writeMode;
    return *this;
}

FileOutputOptions& FileOutputOptions::SetShare(FileShare share) {
    m_share = share;
    return *this;
}

bool FileOutputOptions::IsValid() const {
    return !(m_creationMode == FileCreationMode::CreationNew &&
             m_writeMode == FileWriteMode::Append);
}

Yr::UniString FileOutputOptions::ToString() const {
    return Yr::UniString::Printf(
        "FileOutputOptions (access-denied-retry-option=%T, creation-mode=%T, write-mode=%T, "
        "share=%T)",
        m_accessDeniedRetryOptions.ToString(), m_creationMode.ToString(), m_writeMode.ToString(),
        m_share.ToString());
}

}  // namespace Morvelan::Common::IO
