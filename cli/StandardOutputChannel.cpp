#include "cli/StandardOutputChannel.h"

#include <unistd.h>

#include "Common/IO/IOUtilities.h"
#include "InputOutput/FileSystem.h"

namespace Morvelan::Tool {

void StandardOutputChannel::Write(const char* buffer, Yr::UInt32 size) {
    Common::IO::CheckFileError("Failed to write to standard output.",
                               ::IO::FileSystem::Get().Write(STDOUT_FILENO, buffer, size),
                               "cli/StandardOutputChannel", __LINE__);
}

}  // namespace Morvelan::Tool
