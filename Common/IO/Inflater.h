#pragma once

#include <memory>
#include <vector>

#include "Yr/MemoryBlock.h"
#include "Yr/Types.h"

struct z_stream_s;

namespace Morvelan::Common::IO {

// Decompresses a raw (`nowrap`) or zlib-wrapped deflate stream pushed to it
// in pieces: SetInput hands over the next compressed bytes (copied), Inflate
// produces as much as they yield. Shared between a channel and its caller
// through Ref<Inflater>, so the caller can see what input the stream left
// over or supply a preset dictionary. Corrupt data throws InflaterException.
class Inflater final {
public:
    explicit Inflater(bool nowrap);
    ~Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    // Replaces any unconsumed input.
    void SetInput(const char* data, Yr::UInt32 size);
    void SetInput(const std::vector<char>& data);
    // Bytes written to `out`; 0 when more input or a dictionary is needed or
    // the stream has ended.
    Yr::UInt32 Inflate(char* out, Yr::UInt32 size);
    Yr::UInt32 Inflate(std::vector<char>& out);

    bool NeedsInput() const { return m_offset == m_size; }
    bool NeedsDictionary() const { return m_needsDictionary; }
    bool IsFinished() const { return m_finished; }

    // A raw stream takes its dictionary before the first Inflate; a wrapped
    // one once NeedsDictionary() says so, and refuses one that does not match.
    void SetDictionary(const char* data, Yr::UInt32 size);
    void SetDictionary(const std::vector<char>& data);
    // Starts a new stream; any unconsumed input is dropped.
    void Reset();

    Yr::UInt32 GetRemainingCount() const { return m_size - m_offset; }
    // Copies at most `size` unconsumed bytes; returns how many are unconsumed.
    Yr::UInt32 GetRemainingInput(char* out, Yr::UInt32 size) const;
    Yr::UInt32 GetRemainingInput(std::vector<char>& out) const;

    Yr::UInt64 GetTotalInputCount() const;
    Yr::UInt64 GetTotalOutputCount() const;
    // zlib's running Adler-32 of the output; while a dictionary is needed,
    // the Adler-32 of the dictionary the stream asks for.
    Yr::UInt32 GetAddler32() const;

private:
    struct StreamDeleter {
        void operator()(z_stream_s* stream) const;
    };

    void ReserveInput(Yr::UInt32 size);

    std::unique_ptr<z_stream_s, StreamDeleter> m_stream;
    bool m_needsDictionary = false;
    bool m_finished = false;
    Yr::MemoryBlock m_input;
    Yr::UInt32 m_capacity = 0;
    Yr::UInt32 m_size = 0;
    Yr::UInt32 m_offset = 0;  // first unconsumed byte of m_input
};

}  // namespace Morvelan::Common::IO
