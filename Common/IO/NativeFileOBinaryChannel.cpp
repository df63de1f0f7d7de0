#include "Common/IO/NativeFileOBinaryChannel.h"

#include "Common/IO/AccessDeniedException.h"
#include "Common/IO/FileSystemException.h"
#include "Common/IO/LocationUtils.h"
#include "Common/IO/NativeFileOBinaryChannelImpl.h"
#include "InputOutput/FileSystem.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common::IO {
namespace {

constexpr const char* kSourceUnit = "Common/IO/NativeFileOBinaryChannel";

FileOutputOptions MakeOptions(bool append, FileShare share, Yr::UInt32 retryTimeout,
                              Yr::UInt32 retryCount) {
    FileOutputOptions options;
    options
        .SetAccessDeniedRetryOptions(
            RetryOptions().SetRetryTimeout(retryTimeout).SetRetryCount(retryCount))
        .SetCreationMode(FileCreationMode::CreationAlways)
        .SetWriteMode(append ? FileWriteMode::Append : FileWriteMode::Truncate)
        .SetShare(share);
    return options;
}

void CheckOptions(const FileOutputOptions& options) {
    if (!options.IsValid())
        throw Yr::IllegalArgumentException("Invalid file output options: options are not valid.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
}

// File-system exceptions already say what went wrong with which file and
// pass as they are; bare system failures get the file they happened to.
template <class Action>
void WrapSystemFailure(Action&& action, const Yr::UniString& message, Yr::UInt32 line) {
    try {
        action();
    } catch (const FileSystemException&) {
        throw;
    } catch (const Yr::IOException& e) {
        throw Yr::IOException(message, kSourceUnit, line, e, Yr::kIOErrorCode);
    }
}

}  // namespace

NativeFileOBinaryChannel::NativeFileOBinaryChannel(const ::IO::Location& location,
                                                   const FileOutputOptions& options)
    : m_impl(std::make_unique<NativeFileOBinaryChannelImpl>()) {
    OpenRetrying(location, options);
}

NativeFileOBinaryChannel::NativeFileOBinaryChannel(const ::IO::Location& location, bool append,
                                                   FileShare share, Yr::UInt32 retryTimeout,
                                                   Yr::UInt32 retryCount)
    : NativeFileOBinaryChannel(location, MakeOptions(append, share, retryTimeout, retryCount)) {}

NativeFileOBinaryChannel::NativeFileOBinaryChannel(int descriptor)
    : m_impl(std::make_unique<NativeFileOBinaryChannelImpl>()) {
    WrapSystemFailure([&] { m_impl->Adopt(descriptor); },
                      Yr::UniString::Printf("Failed to open file by file descriptor: %x.",
                                            static_cast<unsigned>(descriptor)),
                      __LINE__);
}

NativeFileOBinaryChannel::~NativeFileOBinaryChannel() = default;

void NativeFileOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    CheckOpened(__LINE__);
    WrapSystemFailure([&] { m_impl->Write(buffer, size); },
                      Quoted("Failed to write file: '%T'. Failed to write file."), __LINE__);
}

void NativeFileOBinaryChannel::Flush() {
    CheckOpened(__LINE__);
}

void NativeFileOBinaryChannel::Sync() {
    CheckOpened(__LINE__);
    WrapSystemFailure([&] { m_impl->Sync(); },
                      Quoted("Failed to sync file: '%T'. Failed to sync file."), __LINE__);
}

Yr::Int64 NativeFileOBinaryChannel::GetFD() const {
    return m_impl->GetDescriptor();
}

void NativeFileOBinaryChannel::Close() {
    m_impl->Close();
}

// Someone else holding the file is often brief (a scanner, a backup), so
// access denied earns a few more tries; anything else fails at once.
void NativeFileOBinaryChannel::OpenRetrying(const ::IO::Location& location,
                                            const FileOutputOptions& options) {
    const RetryOptions& retry = options.GetAccessDeniedRetryOptions();
    for (Yr::UInt32 retriesLeft = retry.GetRetryCount();; --retriesLeft) {
        try {
            OpenOnce(location, options);
            return;
        } catch (const AccessDeniedException&) {
            if (retriesLeft == 0) throw;
        }
        ::IO::FileSystem::Get().Sleep(retry.GetRetryTimeout());
    }
}

void NativeFileOBinaryChannel::OpenOnce(const ::IO::Location& location,
                                        const FileOutputOptions& options) {
    CheckOptions(options);
    CheckLocation(location, kSourceUnit, __LINE__);
    Yr::UniString path;
    const ::IO::Status status = location.GetPath(path);
    const Yr::UniString message = Yr::UniString::Printf(
        "Failed to open file: '%T'. Failed to open file.", location.GetDisplayText());
    if (status != ::IO::kSuccess)
        throw Yr::IOException(message, kSourceUnit, __LINE__, Yr::kIOErrorCode);
    WrapSystemFailure([&] { m_impl->Open(path.ToUtf8(), options); }, message, __LINE__);
}

void NativeFileOBinaryChannel::CheckOpened(Yr::UInt32 line) const {
    if (!m_impl->IsOpened())
        throw Yr::IOException("Native file output channel is closed.", kSourceUnit, line,
                              Yr::kIOErrorCode);
}

Yr::UniString NativeFileOBinaryChannel::Quoted(const char* format) const {
    return Yr::UniString::Printf(format, Yr::UniString(m_impl->GetPath().c_str()));
}

}  // namespace Morvelan::Common::IO
