#pragma once

#include <memory>

#include "Common/IO/ZipEntry.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/Ref.h"

namespace Morvelan::Common::IO {

// Writes a ZIP stream, entry by entry, forward only, so any output channel
// will do (a pipe as well as a file). Writes go to the current entry.
class ZipOBinaryChannel final : public Yr::OBinaryChannel {
public:
    explicit ZipOBinaryChannel(Yr::OBinaryChannel& output);
    explicit ZipOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& output);
    ~ZipOBinaryChannel() override;

    // The archive comment, written in the end record.
    void SetComment(const Yr::UniString& comment);
    // Deflate level for later entries: -1 (zlib's default) to 9.
    void SetLevel(int level);

    // Closes the current entry, then starts `entry`. Sizes and CRC the entry
    // already has go into the local header and are checked when it closes;
    // unknown ones go into a data descriptor after the data.
    void PutNextEntry(const Yr::Ref<ZipEntry>& entry);
    Yr::Ref<ZipEntry> PutNextEntry(const Yr::UniString& name, ZipEntry::Method method);
    void Write(const char* buffer, Yr::UInt32 size) override;
    void CloseEntry();
    // Closes the current entry and writes the central directory and the end
    // records; later writes throw.
    void Finish();
    bool IsFinished() const;
    // Flushes the output without ending anything.
    void Flush() override;
    // Finish, then close the output.
    void Close() override;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Morvelan::Common::IO
