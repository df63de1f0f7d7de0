#pragma once

#include "Common/IO/FileShare.h"
#include "InputOutput/Location.h"
#include "Yr/IBinaryChannelFactory.h"

namespace Morvelan::Common::IO {

// Opens FileIBinaryChannels on one location, each time anew.
class FileIBinaryChannelFactory final : public Yr::IBinaryChannelFactory {
public:
    FileIBinaryChannelFactory(const ::IO::Location& location, FileShare share);
    FileIBinaryChannelFactory(const FileIBinaryChannelFactory&) = default;
    FileIBinaryChannelFactory(FileIBinaryChannelFactory&&) = default;
    FileIBinaryChannelFactory& operator=(const FileIBinaryChannelFactory&) = default;
    FileIBinaryChannelFactory& operator=(FileIBinaryChannelFactory&&) = default;
    ~FileIBinaryChannelFactory() override;

    // A new, opened FileIBinaryChannel; the caller owns it.
    Yr::IBinaryChannel* GetInputChannel() const override;

private:
    ::IO::Location m_location;
    FileShare m_share;
};

}  // namespace Morvelan::Common::IO
