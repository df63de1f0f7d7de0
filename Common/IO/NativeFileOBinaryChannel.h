#pragma once

#include <memory>

#include "Common/IO/FileOutputOptions.h"
#include "Common/IO/FileShare.h"
#include "InputOutput/Location.h"
#include "Yr/OBinaryChannel.h"

namespace Morvelan::Common::IO {

class NativeFileOBinaryChannelImpl;

// Writes straight to a system file descriptor, honouring every output
// option: creation and write mode, sharing (as advisory locks) and the
// access-denied retry. Can also take over a descriptor opened elsewhere.
class NativeFileOBinaryChannel final : public Yr::OBinaryChannel {
public:
    NativeFileOBinaryChannel(const ::IO::Location& location, const FileOutputOptions& options);
    // Creation-always, with the retry numbers in RetryOptions' order.
    NativeFileOBinaryChannel(const ::IO::Location& location, bool append, FileShare share,
                             Yr::UInt32 retryTimeout, Yr::UInt32 retryCount);
    // Takes ownership of `descriptor`: Close closes it.
    explicit NativeFileOBinaryChannel(int descriptor);
    ~NativeFileOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    // Nothing to push: every write reaches the system at once.
    void Flush() override;
    // Forces the written data to the disk.
    void Sync();
    Yr::Int64 GetFD() const;
    void Close() override;

private:
    void OpenRetrying(const ::IO::Location& location, const FileOutputOptions& options);
    void OpenOnce(const ::IO::Location& location, const FileOutputOptions& options);
    void CheckOpened(Yr::UInt32 line) const;
    Yr::UniString Quoted(const char* format) const;

    std::unique_ptr<NativeFileOBinaryChannelImpl> m_impl;
};

}  // namespace Morvelan::Common::IO
