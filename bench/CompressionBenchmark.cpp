// The compression channels against the libraries that peers use directly, on
// the same corpus, in 262144-byte packets, one thread, memory to memory.
#include <benchmark/benchmark.h>
#include <lz4.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "Common/IO/DeflaterOBinaryChannel.h"
#include "Common/IO/InflaterIBinaryChannel.h"
#include "Common/IO/NullOBinaryChannel.h"
#include "Common/IO/QuickLZCompressor.h"
#include "Common/IO/QuickLZDecompressor.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "Yr/MemoryOBinaryChannel.h"
#include "bench/CompressionCorpus.h"

namespace {

using Morvelan::Bench::CompressionCorpus;
using Morvelan::Common::IO::QuickLZCompressor;
using Morvelan::Common::IO::QuickLZDecompressor;

constexpr std::size_t kPacketSize = 262144;
constexpr int kLevel = 6;

bool CorpusReady(benchmark::State& state) {
    if (CompressionCorpus().size() < Morvelan::Bench::kCompressionCorpusSize) {
        state.SkipWithError("not enough files on this machine for the corpus");
        return false;
    }
    return true;
}

void ReportBytes(benchmark::State& state, std::size_t compressedSize) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * CompressionCorpus().size()));
    state.counters["compression_ratio"] =
        static_cast<double>(CompressionCorpus().size()) / static_cast<double>(compressedSize);
}

// ---- deflate ---------------------------------------------------------------

std::string DeflateWithZlib(const std::string& data, Yr::UInt32 bufferSize) {
    z_stream stream{};
    deflateInit(&stream, kLevel);
    std::string out;
    std::vector<char> buffer(bufferSize);
    for (std::size_t offset = 0;; offset += bufferSize) {
        const std::size_t count = std::min<std::size_t>(bufferSize, data.size() - offset);
        const bool last = offset + count >= data.size();
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data() + offset));
        stream.avail_in = static_cast<uInt>(count);
        int result = Z_OK;
        do {
            stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
            stream.avail_out = bufferSize;
            result = deflate(&stream, last ? Z_FINISH : Z_NO_FLUSH);
            out.append(buffer.data(), bufferSize - stream.avail_out);
        } while (stream.avail_out == 0 || (last && result != Z_STREAM_END));
        if (last) break;
    }
    deflateEnd(&stream);
    return out;
}

// Counts what it inflates, out of a buffer of `bufferSize`, as a reader that
// passes the bytes on would.
std::size_t InflateWithZlib(const std::string& compressed, Yr::UInt32 bufferSize) {
    z_stream stream{};
    inflateInit(&stream);
    std::size_t total = 0;
    std::vector<char> buffer(bufferSize);
    int result = Z_OK;
    for (std::size_t offset = 0; result != Z_STREAM_END && offset < compressed.size();
         offset += bufferSize) {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data() + offset));
        stream.avail_in =
            static_cast<uInt>(std::min<std::size_t>(bufferSize, compressed.size() - offset));
        do {
            stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
            stream.avail_out = bufferSize;
            result = inflate(&stream, Z_NO_FLUSH);
            total += bufferSize - stream.avail_out;
            benchmark::DoNotOptimize(buffer.data());
        } while (stream.avail_out == 0 && result == Z_OK);
    }
    inflateEnd(&stream);
    return total;
}

void BM_DeflaterChannel(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const std::string& corpus = CompressionCorpus();
    const auto bufferSize = static_cast<Yr::UInt32>(state.range(0));
    std::size_t compressedSize = 0;
    for (auto _ : state) {
        Yr::MemoryOBinaryChannel sink;
        Morvelan::Common::IO::DeflaterOBinaryChannel deflater(sink, kLevel, bufferSize, false);
        for (std::size_t offset = 0; offset < corpus.size(); offset += kPacketSize)
            deflater.Write(corpus.data() + offset,
                           static_cast<Yr::UInt32>(std::min(kPacketSize, corpus.size() - offset)));
        deflater.Finish();
        compressedSize = sink.GetSize();
    }
    ReportBytes(state, compressedSize);
}

// The peer: zlib's own loop with buffers of the same size.
void BM_ZlibDeflate(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    std::size_t compressedSize = 0;
    for (auto _ : state)
        compressedSize =
            DeflateWithZlib(CompressionCorpus(), static_cast<Yr::UInt32>(state.range(0))).size();
    ReportBytes(state, compressedSize);
}

void BM_InflaterChannel(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const auto bufferSize = static_cast<Yr::UInt32>(state.range(0));
    const std::string compressed = DeflateWithZlib(CompressionCorpus(), 65536);
    std::vector<char> packet(kPacketSize);
    for (auto _ : state) {
        Yr::MemoryIBinaryChannel source(compressed.data(),
                                        static_cast<Yr::UInt32>(compressed.size()));
        Morvelan::Common::IO::InflaterIBinaryChannel inflater(source, bufferSize, false);
        std::size_t total = 0;
        while (const Yr::UInt32 count = inflater.Read(
                   packet.data(), static_cast<Yr::UInt32>(packet.size()), Yr::kReadSome))
            total += count;
        if (total != CompressionCorpus().size()) state.SkipWithError("inflated another size");
    }
    ReportBytes(state, compressed.size());
}

void BM_ZlibInflate(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const std::string compressed = DeflateWithZlib(CompressionCorpus(), 65536);
    for (auto _ : state) {
        const std::size_t total =
            InflateWithZlib(compressed, static_cast<Yr::UInt32>(state.range(0)));
        if (total != CompressionCorpus().size()) state.SkipWithError("inflated another size");
    }
    ReportBytes(state, compressed.size());
}

// ---- QuickLZ against LZ4 ---------------------------------------------------

std::vector<std::string> QuickLZPackets() {
    const std::string& corpus = CompressionCorpus();
    QuickLZCompressor compressor;
    std::vector<std::string> blocks;
    std::string block(kPacketSize + QuickLZCompressor::kMaxExpansion, '\0');
    for (std::size_t offset = 0; offset < corpus.size(); offset += kPacketSize) {
        const auto size = static_cast<Yr::UInt32>(std::min(kPacketSize, corpus.size() - offset));
        blocks.emplace_back(block.data(),
                            compressor.Compress(corpus.data() + offset, size, block.data()));
    }
    return blocks;
}

std::vector<std::string> Lz4Packets() {
    const std::string& corpus = CompressionCorpus();
    std::vector<std::string> blocks;
    std::string block(static_cast<std::size_t>(LZ4_compressBound(kPacketSize)), '\0');
    for (std::size_t offset = 0; offset < corpus.size(); offset += kPacketSize) {
        const int size = static_cast<int>(std::min(kPacketSize, corpus.size() - offset));
        blocks.emplace_back(block.data(), static_cast<std::size_t>(LZ4_compress_default(
                                              corpus.data() + offset, block.data(), size,
                                              static_cast<int>(block.size()))));
    }
    return blocks;
}

std::size_t TotalSize(const std::vector<std::string>& blocks) {
    std::size_t total = 0;
    for (const std::string& block : blocks) total += block.size();
    return total;
}

void BM_QuickLZCompress(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const std::string& corpus = CompressionCorpus();
    std::string block(kPacketSize + QuickLZCompressor::kMaxExpansion, '\0');
    std::size_t compressedSize = 0;
    for (auto _ : state) {
        QuickLZCompressor compressor;  // one stream, as a channel compresses it
        compressedSize = 0;
        for (std::size_t offset = 0; offset < corpus.size(); offset += kPacketSize)
            compressedSize += compressor.Compress(
                corpus.data() + offset,
                static_cast<Yr::UInt32>(std::min(kPacketSize, corpus.size() - offset)),
                block.data());
    }
    ReportBytes(state, compressedSize);
}

void BM_Lz4Compress(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const std::string& corpus = CompressionCorpus();
    std::string block(static_cast<std::size_t>(LZ4_compressBound(kPacketSize)), '\0');
    std::size_t compressedSize = 0;
    for (auto _ : state) {
        compressedSize = 0;
        for (std::size_t offset = 0; offset < corpus.size(); offset += kPacketSize)
            compressedSize += static_cast<std::size_t>(LZ4_compress_default(
                corpus.data() + offset, block.data(),
                static_cast<int>(std::min(kPacketSize, corpus.size() - offset)),
                static_cast<int>(block.size())));
    }
    ReportBytes(state, compressedSize);
}

void BM_QuickLZDecompress(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const std::vector<std::string> blocks = QuickLZPackets();
    std::string packet(kPacketSize, '\0');
    for (auto _ : state) {
        QuickLZDecompressor decompressor;
        std::size_t total = 0;
        for (const std::string& block : blocks)
            total += decompressor.Decompress(block.data(), static_cast<Yr::UInt32>(block.size()),
                                             packet.data(), kPacketSize);
        if (total != CompressionCorpus().size()) state.SkipWithError("decompressed another size");
    }
    ReportBytes(state, TotalSize(blocks));
}

void BM_Lz4Decompress(benchmark::State& state) {
    if (!CorpusReady(state)) return;
    const std::vector<std::string> blocks = Lz4Packets();
    std::string packet(kPacketSize, '\0');
    for (auto _ : state) {
        std::size_t total = 0;
        for (const std::string& block : blocks)
            total += static_cast<std::size_t>(LZ4_decompress_safe(
                block.data(), packet.data(), static_cast<int>(block.size()), kPacketSize));
        if (total != CompressionCorpus().size()) state.SkipWithError("decompressed another size");
    }
    ReportBytes(state, TotalSize(blocks));
}

BENCHMARK(BM_DeflaterChannel)->Arg(65536)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ZlibDeflate)->Arg(65536)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InflaterChannel)->Arg(65536)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ZlibInflate)->Arg(65536)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuickLZCompress)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Lz4Compress)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuickLZDecompress)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Lz4Decompress)->Unit(benchmark::kMillisecond);

}  // namespace
