#pragma once

#include <memory>

#include "Common/IO/ZipEntry.h"
#include "Yr/IBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Reads a ZIP stream front to back, as it comes (a pipe as well as a file):
// entry by entry from the local headers, then the central directory, which
// is checked against what was read. Reads return the current entry's data.
class ZipIBinaryChannel final : public Yr::IBinaryChannel {
public:
    explicit ZipIBinaryChannel(Yr::IBinaryChannel& input);
    explicit ZipIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& input);
    ~ZipIBinaryChannel() override;

    // Leaves the current entry, then returns the next one; an empty Ref
    // once the central directory and the end records have been read.
    Yr::Ref<ZipEntry> GetNextEntry();
    using Yr::IBinaryChannel::Read;
    // The current entry's uncompressed data; 0 at its end or with no entry.
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;
    Yr::UInt64 GetAvailable() const override;
    // Reads what is left of the entry and checks its sizes and CRC-32,
    // completing the entry's fields.
    void CloseEntry();
    // The archive comment, known once GetNextEntry has returned empty.
    Yr::UniString GetComment() const;
    void Close() override;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Morvelan::Common::IO
