// The deferred-file channel against the file channel it ends up writing to.
// Both write 1 GiB in 1 MiB pieces to a new file on the real disk; the
// deferred channel holds the first 1 MiB in memory and moves it to the file
// on the second write, so the ratio shows what holding back and the switch
// cost over plain file output. The file is removed between runs, untimed, so
// that both sides create it afresh.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "Common/IO/DeferredFileOBinaryChannel.h"
#include "Common/IO/FileOBinaryChannel.h"
#include "InputOutput/Location.h"
#include "Yr/Types.h"
#include "bench/BenchmarkData.h"

namespace {

using Morvelan::Common::IO::DeferredFileOBinaryChannel;
using Morvelan::Common::IO::FileOBinaryChannel;
using Morvelan::Common::IO::FileShare;

constexpr Yr::UInt32 kPieceSize = 1u << 20;
constexpr Yr::UInt64 kTotalSize = Yr::UInt64{1} << 30;
constexpr Yr::UInt64 kThreshold = 1u << 20;

// Named after the process, so that two runs at once do not meet.
std::string ScratchPath() {
    return std::string(MORVELAN_BENCH_FOLDER) + "/deferred-" + std::to_string(::getpid()) + ".out";
}

const std::string& Piece() {
    static const std::string piece = Morvelan::Bench::RandomBytes(kPieceSize);
    return piece;
}

void WriteAll(Yr::OBinaryChannel& channel) {
    const std::string& piece = Piece();
    for (Yr::UInt64 written = 0; written < kTotalSize; written += kPieceSize)
        channel.Write(piece.data(), kPieceSize);
    channel.Close();
}

template <typename MakeChannel>
void WriteFileBenchmark(benchmark::State& state, MakeChannel makeChannel) {
    const std::string path = ScratchPath();
    const ::IO::Location location = ::IO::Location::Parse(path.c_str());
    Piece();
    try {
        // Untimed, so that neither side pays for the page cache the first
        // gigabyte written in this process takes from the system.
        WriteAll(*makeChannel(location));
        std::remove(path.c_str());
        for (auto _ : state) {
            auto channel = makeChannel(location);
            WriteAll(*channel);
            state.PauseTiming();
            channel.reset();
            std::remove(path.c_str());
            state.ResumeTiming();
        }
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
    std::remove(path.c_str());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTotalSize));
}

void BM_DeferredFileWrite(benchmark::State& state) {
    WriteFileBenchmark(state, [](const ::IO::Location& location) {
        return std::make_unique<DeferredFileOBinaryChannel>(location, kThreshold);
    });
}

// The peer: the same pieces straight into the file channel.
void BM_FileWrite(benchmark::State& state) {
    WriteFileBenchmark(state, [](const ::IO::Location& location) {
        return std::make_unique<FileOBinaryChannel>(location, false, FileShare::None);
    });
}

}  // namespace

BENCHMARK(BM_DeferredFileWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_FileWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
