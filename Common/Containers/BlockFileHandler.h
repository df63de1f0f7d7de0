#pragma once

#include "InputOutput/Location.h"
#include "Yr/Types.h"

namespace Morvelan::Common::Containers {

// The platform layer of a block file: positioned reads and writes of byte
// ranges, size changes, flush and close of one file held for exclusive
// read-write use. Every failure throws BlockFileException. No lock: reads
// and writes at different offsets may run on different threads at once;
// SetSize only from the block file's own operations.
class BlockFileHandler {
public:
    // Opens the file at once, creating an empty one when missing; a file
    // another handler holds is refused. The caller owns the result.
    static BlockFileHandler* Create(const ::IO::Location& location);

    BlockFileHandler(const BlockFileHandler&) = delete;
    BlockFileHandler& operator=(const BlockFileHandler&) = delete;
    virtual ~BlockFileHandler();

    // As kept by the handler, not asked of the system.
    virtual Yr::UInt64 GetSize() = 0;
    virtual void SetSize(Yr::UInt64 size) = 0;
    // All `size` bytes or an exception; the file grows as needed.
    virtual void Write(Yr::UInt64 offset, const void* buffer, Yr::UInt32 size) = 0;
    // All `size` bytes or an exception: a range past the end is an error.
    virtual void Read(Yr::UInt64 offset, void* buffer, Yr::UInt32 size) = 0;
    // Forces what was written to stable storage.
    virtual void Flush() = 0;
    virtual bool IsClosed() = 0;
    // A second Close does nothing.
    virtual void Close() = 0;

    const ::IO::Location& GetLocation() const { return m_location; }

protected:
    explicit BlockFileHandler(const ::IO::Location& location);

private:
    ::IO::Location m_location;
};

}  // namespace Morvelan::Common::Containers
