// Reading through an unbounded rewindable channel, which keeps every byte in
// its paged history, against reading the memory channel directly.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "Common/IO/RewindableIBinaryChannel.h"
#include "Yr/MemoryIBinaryChannel.h"
#include "bench/BenchmarkData.h"

namespace {

constexpr Yr::UInt32 kSize = 256u << 20;

const std::string& Data() {
    static const std::string bytes = Morvelan::Bench::RandomBytes(kSize);
    return bytes;
}

// Reads `channel` to its end in reads of the benchmark's argument.
void Drain(benchmark::State& state, Yr::IBinaryChannel& channel, std::vector<char>& buffer) {
    const auto size = static_cast<Yr::UInt32>(state.range(0));
    while (channel.Read(buffer.data(), size, Yr::kReadSome) > 0) benchmark::ClobberMemory();
}

void BM_RewindableRead(benchmark::State& state) {
    const std::string& data = Data();
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Yr::MemoryIBinaryChannel inner(data.data(), kSize);
        Morvelan::Common::IO::RewindableIBinaryChannel channel(inner);
        Drain(state, channel, buffer);
        benchmark::DoNotOptimize(channel.GetPosition());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kSize);
}

// The peer: the same reads straight from the memory channel.
void BM_MemoryChannelRead(benchmark::State& state) {
    const std::string& data = Data();
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Yr::MemoryIBinaryChannel inner(data.data(), kSize);
        Drain(state, inner, buffer);
        benchmark::DoNotOptimize(inner.GetAvailable());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kSize);
}

BENCHMARK(BM_RewindableRead)->Arg(64 << 10)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemoryChannelRead)->Arg(64 << 10)->Unit(benchmark::kMillisecond);

}  // namespace
