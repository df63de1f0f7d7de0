#include "Common/Containers/Posix/PosixBlockFileHandler.h"

#include <algorithm>

#include "Common/Containers/BlockFileException.h"
#include "Common/GetErrorMessage.h"
#include "Common/IO/LocationUtils.h"
#include "InputOutput/FileSystem.h"
#include "Yr/ErrorCodes.h"

namespace Morvelan::Common::Containers {
namespace {

using ::IO::FileSystem;

constexpr const char* kSourceUnit = "Common/Containers/Posix/PosixBlockFileHandler";

void Check(::IO::Status status, const char* text, Yr::UInt32 line) {
    if (status != ::IO::kSuccess)
        throw BlockFileException(GetErrorMessage(text, status), kSourceUnit, line,
                                 Yr::kIOErrorCode);
}

}  // namespace

PosixBlockFileHandler::PosixBlockFileHandler(const ::IO::Location& location)
    : BlockFileHandler(location) {
    FileSystem& fileSystem = FileSystem::Get();
    const char* const openFailure =
        "Failed to create block file handler: failed to open block file";
    int descriptor = -1;
    Check(fileSystem.Open(IO::LocationToPath(location).ToUtf8(), FileSystem::OpenMode::ReadWrite,
                          descriptor),
          openFailure, __LINE__);
    // The lock stands in for opening without sharing: a second opener fails.
    ::IO::Status status = fileSystem.Lock(descriptor, FileSystem::LockMode::Exclusive);
    const char* failure = openFailure;
    if (status == ::IO::kSuccess) {
        status = fileSystem.GetSize(descriptor, m_size);
        failure = "Failed to create block file handler: failed to get block file size";
    }
    if (status != ::IO::kSuccess) {
        fileSystem.Close(descriptor);
        Check(status, failure, __LINE__);
    }
    m_descriptor = descriptor;
}

PosixBlockFileHandler::~PosixBlockFileHandler() {
    if (m_descriptor >= 0) FileSystem::Get().Close(m_descriptor);
}

void PosixBlockFileHandler::SetSize(Yr::UInt64 size) {
    if (size == m_size) return;
    Check(FileSystem::Get().Truncate(m_descriptor, size),
          "Failed to set block file size: failed to set end of file", __LINE__);
    m_size = size;
}

void PosixBlockFileHandler::Write(Yr::UInt64 offset, const void* buffer, Yr::UInt32 size) {
    Check(FileSystem::Get().WriteAt(m_descriptor, offset, buffer, size),
          "Failed to write block to block file", __LINE__);
    m_size = std::max(m_size, offset + size);
}

void PosixBlockFileHandler::Read(Yr::UInt64 offset, void* buffer, Yr::UInt32 size) {
    // Kept word for word, "to" missing and all: callers match it.
    const char* const failure = "Failed read block from block file";
    std::size_t count = 0;
    Check(FileSystem::Get().ReadAt(m_descriptor, offset, buffer, size, count), failure, __LINE__);
    if (count < size) Check(::IO::kEndOfFile, failure, __LINE__);
}

void PosixBlockFileHandler::Flush() {
    Check(FileSystem::Get().FlushDescriptor(m_descriptor), "Failed to flush block file", __LINE__);
}

void PosixBlockFileHandler::Close() {
    if (m_descriptor < 0) return;
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    Check(FileSystem::Get().Close(descriptor), "Failed to close block file", __LINE__);
}

}  // namespace Morvelan::Common::Containers
