#include "Common/Containers/BlockFileHandler.h"

#include "Common/Containers/Posix/PosixBlockFileHandler.h"
#include "Common/IO/LocationUtils.h"

namespace Morvelan::Common::Containers {

BlockFileHandler::BlockFileHandler(const ::IO::Location& location) : m_location(location) {
    IO::CheckLocation(location, "Common/Containers/BlockFileHandler", 34);
}

BlockFileHandler::~BlockFileHandler() = default;

BlockFileHandler* BlockFileHandler::Create(const ::IO::Location& location) {
    return new PosixBlockFileHandler(location);
}

}  // namespace Morvelan::Common::Containers
