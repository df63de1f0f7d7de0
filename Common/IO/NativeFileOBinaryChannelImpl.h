#pragma once

#include <string>

#include "Common/IO/FileOutputOptions.h"
#include "Yr/Types.h"

namespace Morvelan::Common::IO {

// The POSIX layer of NativeFileOBinaryChannel: one descriptor and the path
// it was opened on. Failures are thrown in the system's own terms; the
// channel adds the location and the retry.
class NativeFileOBinaryChannelImpl final {
public:
    NativeFileOBinaryChannelImpl() = default;
    ~NativeFileOBinaryChannelImpl();
    NativeFileOBinaryChannelImpl(const NativeFileOBinaryChannelImpl&) = delete;
    NativeFileOBinaryChannelImpl& operator=(const NativeFileOBinaryChannelImpl&) = delete;

    void Open(const std::string& path, const FileOutputOptions& options);
    void Adopt(int descriptor);
    void Write(const char* buffer, Yr::UInt32 size);
    void Sync();
    void Close();

    bool IsOpened() const { return m_opened; }
    int GetDescriptor() const { return m_descriptor; }
    const std::string& GetPath() const { return m_path; }

private:
    void CheckOpened() const;
    int OpenDescriptor(bool exists, const FileOutputOptions& options) const;
    void Prepare(int descriptor, const FileOutputOptions& options) const;

    std::string m_path;
    int m_descriptor = -1;
    bool m_opened = false;
};

}  // namespace Morvelan::Common::IO
