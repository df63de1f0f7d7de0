#pragma once

#include "Common/IO/FileShare.h"
#include "InputOutput/Location.h"
#include "Yr/OBinaryChannelFactory.h"

namespace Morvelan::Common::IO {

// Opens FileOBinaryChannels on one location, each time anew.
class FileOBinaryChannelFactory final : public Yr::OBinaryChannelFactory {
public:
    FileOBinaryChannelFactory(const ::IO::Location& location, bool append, FileShare share);
    FileOBinaryChannelFactory(const FileOBinaryChannelFactory&) = default;
    FileOBinaryChannelFactory(FileOBinaryChannelFactory&&) = default;
    FileOBinaryChannelFactory& operator=(const FileOBinaryChannelFactory&) = default;
    FileOBinaryChannelFactory& operator=(FileOBinaryChannelFactory&&) = default;
    ~FileOBinaryChannelFactory() override;

    // A new, opened FileOBinaryChannel; the caller owns it.
    Yr::OBinaryChannel* GetOutputChannel() override;

private:
    ::IO::Location m_location;
    bool m_append;
    FileShare m_share;
};

}  // namespace Morvelan::Common::IO
