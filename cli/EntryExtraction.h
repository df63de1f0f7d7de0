#pragma once

#include "Common/IO/ArchiveExtractor.h"
#include "Yr/YrException.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {

// Writes the current entry of `reader` (an archive or zip reader) as the
// file `name` names, then leaves the entry, which checks it. A file this
// extraction made for an entry that then failed (damaged data, a failed
// check) goes again; one that was there before is left alone.
template <class Reader>
void ExtractEntry(Reader& reader, Common::IO::ArchiveExtractor& extractor,
                  const Yr::UniString& name) {
    const auto target = extractor.Prepare(name);
    try {
        extractor.Write(target, reader.GetData());
        reader.Leave();
    } catch (const Yr::YrException&) {
        if (!target.existed) DeleteQuietly(target.location);
        throw;
    }
}

}  // namespace Morvelan::Tool
