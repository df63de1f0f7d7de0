// The archive stream against the plain work it wraps, on the compression
// corpus taken file by file, one entry per file, one thread, memory to memory.
// What the archive adds (records, framing, trailers, counting, CRC-32 and
// the channels between them) is what the ratios measure.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "Common/IO/ArchiveEntry.h"
#include "Common/IO/ArchiveIBinaryChannel.h"
#include "Common/IO/ArchiveOBinaryChannel.h"
#include "Common/IO/CRC32.h"
#include "Common/IO/QuickLZCompressor.h"
#include "Common/IO/QuickLZDecompressor.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/OBinaryChannel.h"
#include "Yr/UniString.h"
#include "bench/CompressionCorpus.h"

namespace {

using Morvelan::Bench::CompressionCorpus;
using Morvelan::Bench::CompressionCorpusFile;
using Morvelan::Bench::CompressionCorpusFiles;
using Morvelan::Common::IO::ArchiveEntry;
using Morvelan::Common::IO::ArchiveIBinaryChannel;
using Morvelan::Common::IO::ArchiveOBinaryChannel;
using Morvelan::Common::IO::CRC32;
using Morvelan::Common::IO::QuickLZCompressor;
using Morvelan::Common::IO::QuickLZDecompressor;

constexpr int kLevel = 6;
constexpr std::size_t kQuickLZPacketSize = 262144;

// Writes into memory allocated once, so that neither side pays for growing
// or first touching its destination inside the timed loop.
class BufferSink final : public Yr::OBinaryChannel {
public:
    explicit BufferSink(std::size_t capacity) : m_bytes(capacity) {}

    void Write(const char* buffer, Yr::UInt32 size) override {
        if (size > m_bytes.size() - m_size) throw std::length_error("benchmark sink is full");
        std::memcpy(m_bytes.data() + m_size, buffer, size);
        m_size += size;
    }
    void Flush() override {}
    void Close() override {}

    void Clear() { m_size = 0; }
    std::size_t GetSize() const { return m_size; }
    std::string GetBytes() const { return std::string(m_bytes.data(), m_size); }

private:
    std::vector<char> m_bytes;
    std::size_t m_size = 0;
};

bool CorpusReady(benchmark::State& state) {
    if (CompressionCorpus().size() < Morvelan::Bench::kCompressionCorpusSize) {
        state.SkipWithError("not enough files on this machine for the corpus");
        return false;
    }
    return true;
}

const char* FileData(const CompressionCorpusFile& file) {
    return CompressionCorpus().data() + file.offset;
}

// Archive, name records and framing take far less than this beyond the data.
std::size_t SinkCapacity() {
    return CompressionCorpus().size() * 2 + (16u << 20);
}

const std::vector<Yr::UniString>& EntryNames() {
    static const std::vector<Yr::UniString> names = [] {
        std::vector<Yr::UniString> built;
        for (const CompressionCorpusFile& file : CompressionCorpusFiles())
            built.push_back(Yr::UniString::FromUtf8Replacing(file.name));
        return built;
    }();
    return names;
}

// Both sides report the uncompressed bytes, and the compressors how far
// they got the corpus down.
void ReportBytes(benchmark::State& state, std::size_t storedSize) {
    const double corpusSize = static_cast<double>(CompressionCorpus().size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * CompressionCorpus().size()));
    state.counters["compression_ratio"] = corpusSize / static_cast<double>(storedSize);
    state.counters["files"] = static_cast<double>(CompressionCorpusFiles().size());
}

// ---- ours: the archive stream -----------------------------------------------

void WriteArchive(BufferSink& sink, ArchiveEntry::Method method) {
    const std::vector<CompressionCorpusFile>& files = CompressionCorpusFiles();
    const std::vector<Yr::UniString>& names = EntryNames();
    ArchiveOBinaryChannel archive(sink, 0);
    archive.SetCompressionLevel(kLevel);
    for (std::size_t i = 0; i < files.size(); ++i) {
        archive.PutNextEntry(names[i], method);
        archive.Write(FileData(files[i]), static_cast<Yr::UInt32>(files[i].size));
    }
    archive.Finish();
}

const std::string& PreparedArchive(ArchiveEntry::Method method) {
    static std::string archives[ArchiveEntry::Default];
    std::string& archive = archives[method];
    if (archive.empty()) {
        BufferSink sink(SinkCapacity());
        WriteArchive(sink, method);
        archive = sink.GetBytes();
    }
    return archive;
}

// Every entry into its place in `out`, which holds the whole corpus; returns
// the bytes read.
std::size_t ReadArchive(const std::string& archive, std::vector<char>& out) {
    Yr::MemoryIBinaryChannel source(archive.data(), static_cast<Yr::UInt32>(archive.size()));
    ArchiveIBinaryChannel reader(source);
    std::size_t total = 0;
    while (reader.GetNextEntry()) {
        while (const Yr::UInt32 count = reader.Read(
                   out.data() + total, static_cast<Yr::UInt32>(out.size() - total), Yr::kReadSome))
            total += count;
    }
    return total;
}

void WriteArchiveBenchmark(benchmark::State& state, ArchiveEntry::Method method) {
    if (!CorpusReady(state)) return;
    BufferSink sink(SinkCapacity());
    for (auto _ : state) {
        sink.Clear();
        WriteArchive(sink, method);
        benchmark::ClobberMemory();
    }
    ReportBytes(state, sink.GetSize());
}

void ReadArchiveBenchmark(benchmark::State& state, ArchiveEntry::Method method) {
    if (!CorpusReady(state)) return;
    const std::string& archive = PreparedArchive(method);
    std::vector<char> out(CompressionCorpus().size());
    if (ReadArchive(archive, out) != out.size() ||
        std::memcmp(out.data(), CompressionCorpus().data(), out.size()) != 0) {
        state.SkipWithError("the archive read back another corpus");
        return;
    }
    for (auto _ : state) {
        if (ReadArchive(archive, out) != out.size()) state.SkipWithError("read another size");
        benchmark::ClobberMemory();
    }
    ReportBytes(state, archive.size());
}

void BM_ArchiveWriteStored(benchmark::State& state) {
    WriteArchiveBenchmark(state, ArchiveEntry::Stored);
}
void BM_ArchiveReadStored(benchmark::State& state) {
    ReadArchiveBenchmark(state, ArchiveEntry::Stored);
}
void BM_ArchiveWriteDeflated(benchmark::State& state) {
    WriteArchiveBenchmark(state, ArchiveEntry::Deflated);
}
void BM_ArchiveReadDeflated(benchmark::State& state) {
    ReadArchiveBenchmark(state, ArchiveEntry::Deflated);
}
void BM_ArchiveWriteQuickLZ(benchmark::State& state) {
    WriteArchiveBenchmark(state, ArchiveEntry::QuickLZ);
}
void BM_ArchiveReadQuickLZ(benchmark::State& state) {
    ReadArchiveBenchmark(state, ArchiveEntry::QuickLZ);
}

// ---- peers: the same work per file, done directly -------------------------

// Stored: each file copied to its destination through one CRC-32 pass. The
// same loop stands for both directions.
void CopyFilesWithCrc(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    std::vector<char> out(CompressionCorpus().size());
    Yr::UInt32 crcs = 0;
    for (auto _ : state) {
        for (const CompressionCorpusFile& file : CompressionCorpusFiles()) {
            std::memcpy(out.data() + file.offset, FileData(file), file.size);
            CRC32 crc;
            crc.Update(FileData(file), static_cast<Yr::UInt32>(file.size));
            crcs ^= crc.GetValue();
        }
        benchmark::DoNotOptimize(crcs);
        benchmark::ClobberMemory();
    }
    ReportBytes(state, CompressionCorpus().size());
}

void BM_CopyCrcWrite(benchmark::State& state) {
    CopyFilesWithCrc(state);
}
void BM_CopyCrcRead(benchmark::State& state) {
    CopyFilesWithCrc(state);
}

// One zlib stream per file, as a tool that deflates files one by one with a
// stream it resets between them would make them.
class ZlibFileDeflater {
public:
    ZlibFileDeflater() { deflateInit2(&m_stream, kLevel, Z_DEFLATED, 15, 8, Z_DEFAULT_STRATEGY); }
    ~ZlibFileDeflater() { deflateEnd(&m_stream); }
    ZlibFileDeflater(const ZlibFileDeflater&) = delete;
    ZlibFileDeflater& operator=(const ZlibFileDeflater&) = delete;

    // Deflates into `out`, which holds deflateBound bytes; returns the size.
    std::size_t Deflate(const char* data, std::size_t size, char* out, std::size_t capacity) {
        deflateReset(&m_stream);
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
        m_stream.avail_in = static_cast<uInt>(size);
        m_stream.next_out = reinterpret_cast<Bytef*>(out);
        m_stream.avail_out = static_cast<uInt>(capacity);
        if (deflate(&m_stream, Z_FINISH) != Z_STREAM_END) return 0;
        return capacity - m_stream.avail_out;
    }

    std::size_t Bound(std::size_t size) {
        return deflateBound(&m_stream, static_cast<uLong>(size));
    }

private:
    z_stream m_stream{};
};

std::size_t ZlibBoundTotal(ZlibFileDeflater& deflater) {
    std::size_t total = 0;
    for (const CompressionCorpusFile& file : CompressionCorpusFiles())
        total += deflater.Bound(file.size);
    return total;
}

void BM_ZlibFilesDeflate(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    ZlibFileDeflater deflater;
    std::vector<char> out(ZlibBoundTotal(deflater));
    std::size_t compressedSize = 0;
    Yr::UInt32 crcs = 0;
    for (auto _ : state) {
        compressedSize = 0;
        for (const CompressionCorpusFile& file : CompressionCorpusFiles()) {
            const std::size_t produced = deflater.Deflate(
                FileData(file), file.size, out.data() + compressedSize, deflater.Bound(file.size));
            if (produced == 0) state.SkipWithError("deflate failed");
            compressedSize += produced;
            crcs ^= static_cast<Yr::UInt32>(crc32(0, reinterpret_cast<const Bytef*>(FileData(file)),
                                                  static_cast<uInt>(file.size)));
        }
        benchmark::DoNotOptimize(crcs);
        benchmark::ClobberMemory();
    }
    ReportBytes(state, compressedSize);
}

struct ZlibFiles {
    std::string bytes;
    std::vector<std::size_t> offsets;  // one per file, then the end
};

const ZlibFiles& PreparedZlibFiles() {
    static const ZlibFiles files = [] {
        ZlibFileDeflater deflater;
        ZlibFiles built;
        built.bytes.resize(ZlibBoundTotal(deflater));
        std::size_t size = 0;
        for (const CompressionCorpusFile& file : CompressionCorpusFiles()) {
            built.offsets.push_back(size);
            size += deflater.Deflate(FileData(file), file.size, built.bytes.data() + size,
                                     deflater.Bound(file.size));
        }
        built.offsets.push_back(size);
        built.bytes.resize(size);
        return built;
    }();
    return files;
}

// Each file's stream inflated straight into its place, then checksummed.
void BM_ZlibFilesInflate(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const ZlibFiles& compressed = PreparedZlibFiles();
    const std::vector<CompressionCorpusFile>& files = CompressionCorpusFiles();
    std::vector<char> out(CompressionCorpus().size());
    z_stream stream{};
    inflateInit2(&stream, 15);
    Yr::UInt32 crcs = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            inflateReset(&stream);
            stream.next_in = reinterpret_cast<Bytef*>(
                const_cast<char*>(compressed.bytes.data() + compressed.offsets[i]));
            stream.avail_in = static_cast<uInt>(compressed.offsets[i + 1] - compressed.offsets[i]);
            stream.next_out = reinterpret_cast<Bytef*>(out.data() + files[i].offset);
            stream.avail_out = static_cast<uInt>(files[i].size);
            int result = Z_OK;
            while (result == Z_OK) result = inflate(&stream, Z_NO_FLUSH);
            if (result != Z_STREAM_END || stream.avail_out != 0)
                state.SkipWithError("inflate failed");
            crcs ^= static_cast<Yr::UInt32>(
                crc32(0, reinterpret_cast<const Bytef*>(out.data() + files[i].offset),
                      static_cast<uInt>(files[i].size)));
        }
        benchmark::DoNotOptimize(crcs);
        benchmark::ClobberMemory();
    }
    inflateEnd(&stream);
    ReportBytes(state, compressed.bytes.size());
}

// QuickLZ: a fresh compressor per file (its history must not reach into
// another file), packets of the archive's size, blocks back to back.
void BM_QuickLZFilesCompress(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    std::vector<char> out(SinkCapacity());
    std::size_t compressedSize = 0;
    for (auto _ : state) {
        compressedSize = 0;
        for (const CompressionCorpusFile& file : CompressionCorpusFiles()) {
            QuickLZCompressor compressor;
            for (std::size_t offset = 0; offset < file.size; offset += kQuickLZPacketSize)
                compressedSize += compressor.Compress(
                    FileData(file) + offset,
                    static_cast<Yr::UInt32>(std::min(kQuickLZPacketSize, file.size - offset)),
                    out.data() + compressedSize);
        }
        benchmark::ClobberMemory();
    }
    ReportBytes(state, compressedSize);
}

struct QuickLZFiles {
    std::vector<std::vector<std::string>> blocks;  // per file
    std::size_t size = 0;
};

const QuickLZFiles& PreparedQuickLZFiles() {
    static const QuickLZFiles files = [] {
        QuickLZFiles built;
        std::string block(kQuickLZPacketSize + QuickLZCompressor::kMaxExpansion, '\0');
        for (const CompressionCorpusFile& file : CompressionCorpusFiles()) {
            QuickLZCompressor compressor;
            built.blocks.emplace_back();
            for (std::size_t offset = 0; offset < file.size; offset += kQuickLZPacketSize) {
                const Yr::UInt32 size = compressor.Compress(
                    FileData(file) + offset,
                    static_cast<Yr::UInt32>(std::min(kQuickLZPacketSize, file.size - offset)),
                    block.data());
                built.blocks.back().emplace_back(block.data(), size);
                built.size += size;
            }
        }
        return built;
    }();
    return files;
}

void BM_QuickLZFilesDecompress(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const QuickLZFiles& compressed = PreparedQuickLZFiles();
    std::vector<char> out(CompressionCorpus().size());
    for (auto _ : state) {
        std::size_t total = 0;
        for (const std::vector<std::string>& blocks : compressed.blocks) {
            QuickLZDecompressor decompressor;
            for (const std::string& block : blocks)
                total += decompressor.Decompress(
                    block.data(), static_cast<Yr::UInt32>(block.size()), out.data() + total,
                    static_cast<Yr::UInt32>(std::min(kQuickLZPacketSize, out.size() - total)));
        }
        if (total != out.size()) state.SkipWithError("decompressed another size");
        benchmark::ClobberMemory();
    }
    ReportBytes(state, compressed.size);
}

BENCHMARK(BM_ArchiveWriteStored)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CopyCrcWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ArchiveReadStored)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CopyCrcRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ArchiveWriteDeflated)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ZlibFilesDeflate)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ArchiveReadDeflated)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ZlibFilesInflate)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ArchiveWriteQuickLZ)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuickLZFilesCompress)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ArchiveReadQuickLZ)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuickLZFilesDecompress)->Unit(benchmark::kMillisecond);

}  // namespace
