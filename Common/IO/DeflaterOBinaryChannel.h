#pragma once

#include <memory>

#include "Yr/FilterOBinaryChannel.h"
#include "Yr/MemoryBlock.h"

struct z_stream_s;

namespace Morvelan::Common::IO {

// Compresses everything written to it with zlib onto the inner channel, as a
// raw deflate stream (`nowrap`) or a zlib-wrapped one. Bytes are gathered in
// an input buffer of `bufferSize` and compressed a buffer at a time. Close()
// finishes the stream, then flushes and closes the inner channel; destruction
// leaves the inner channel open and unfinished. A borrowed inner channel must
// outlive the filter; a shared one is kept alive by it.
class DeflaterOBinaryChannel final : public Yr::FilterOBinaryChannel {
public:
    // `level` is zlib's: -1 (default) or 0 to 9; `bufferSize` must not be 0.
    DeflaterOBinaryChannel(Yr::OBinaryChannel& channel, int level, Yr::UInt32 bufferSize,
                           bool nowrap);
    DeflaterOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& channel, int level,
                           Yr::UInt32 bufferSize, bool nowrap);
    ~DeflaterOBinaryChannel() override;

    void Write(const char* buffer, Yr::UInt32 size) override;
    // Ends the compressed data written so far on a byte boundary (a sync
    // flush), so a reader can decode all of it, then flushes the inner channel.
    void Flush() override;
    // Ends the compressed stream; the inner channel stays open.
    void Finish();
    void Close() override;

private:
    struct StreamDeleter {
        void operator()(z_stream_s* stream) const;
    };

    void Initialize(int level, Yr::UInt32 bufferSize, bool nowrap);
    void FlushBuffer(int flushMode);
    void WriteProduced();
    void EnsureOpened(const char* sourceFile, Yr::UInt32 line) const;

    std::unique_ptr<z_stream_s, StreamDeleter> m_stream;
    Yr::UInt32 m_capacity = 0;
    Yr::UInt32 m_fill = 0;
    Yr::MemoryBlock m_input;
    Yr::MemoryBlock m_output;
    bool m_closed = false;
};

}  // namespace Morvelan::Common::IO
