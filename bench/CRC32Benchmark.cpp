#include <benchmark/benchmark.h>
#include <zlib.h>

#include "Common/IO/CRC32.h"
#include "Common/IO/CRC32OBinaryChannel.h"
#include "Common/IO/CountingOBinaryChannel.h"
#include "Common/IO/NullOBinaryChannel.h"
#include "bench/BenchmarkData.h"

namespace {

using Morvelan::Common::IO::CRC32;

constexpr Yr::UInt32 kPieceSize = 64 << 10;

void BM_CRC32_Update(benchmark::State& state) {
    const std::string data = Morvelan::Bench::RandomBytes(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        CRC32 crc;
        crc.Update(data.data(), static_cast<Yr::UInt32>(data.size()));
        benchmark::DoNotOptimize(crc.GetValue());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

// The peer: the system zlib's table-driven crc32().
void BM_ZlibCrc32(benchmark::State& state) {
    const std::string data = Morvelan::Bench::RandomBytes(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        uLong crc =
            crc32(0L, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size()));
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

// A counting and a checksumming filter over a null channel, fed in pieces as
// an archive entry's buffer feeds them.
void BM_CRC32Filter(benchmark::State& state) {
    const std::string data = Morvelan::Bench::RandomBytes(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Morvelan::Common::IO::NullOBinaryChannel nowhere;
        Morvelan::Common::IO::CRC32OBinaryChannel checksummed(nowhere);
        Morvelan::Common::IO::CountingOBinaryChannel counted(checksummed);
        for (std::size_t offset = 0; offset < data.size(); offset += kPieceSize)
            counted.Write(data.data() + offset, kPieceSize);
        benchmark::DoNotOptimize(checksummed.GetCRC());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

// The filter's peer: the same pieces straight into CRC32::Update.
void BM_CRC32_UpdatePieces(benchmark::State& state) {
    const std::string data = Morvelan::Bench::RandomBytes(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        CRC32 crc;
        for (std::size_t offset = 0; offset < data.size(); offset += kPieceSize)
            crc.Update(data.data() + offset, kPieceSize);
        benchmark::DoNotOptimize(crc.GetValue());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

BENCHMARK(BM_CRC32_Update)->Arg(256 << 10)->Arg(64 << 20);
BENCHMARK(BM_ZlibCrc32)->Arg(256 << 10)->Arg(64 << 20);
BENCHMARK(BM_CRC32Filter)->Arg(1 << 20);
BENCHMARK(BM_CRC32_UpdatePieces)->Arg(1 << 20);

}  // namespace
