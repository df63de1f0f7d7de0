// Base64 in-process against the system base64 program run as a process.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "Common/Base64.h"

namespace {

using Morvelan::Common::Base64;

constexpr Yr::UInt32 kSize = 64u << 20;

const std::vector<unsigned char>& Plain() {
    static const std::vector<unsigned char> bytes = [] {
        std::vector<unsigned char> result(kSize);
        std::mt19937 random(7);
        for (auto& byte : result) byte = static_cast<unsigned char>(random());
        return result;
    }();
    return bytes;
}

const std::vector<char>& Encoded() {
    static const std::vector<char> text = [] {
        std::vector<char> result(Base64::EncodedSize(kSize, false));
        Base64::EncodeInto(Plain().data(), kSize, result.data(), false);
        return result;
    }();
    return text;
}

// Files for the peer program, written once per run.
std::string WriteFile(const char* name, const void* data, std::size_t size) {
    const std::string path = "/tmp/morvelan-base64-bench-" + std::to_string(getpid()) + name;
    FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    return path;
}

// Seconds one run of base64 with `flag` on `path` takes, output discarded.
double TimeSystemBase64(const char* flag, const std::string& path) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(127);
        execl("/usr/bin/base64", "base64", flag, path.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_Base64Encode(benchmark::State& state) {
    std::vector<char> target(Base64::EncodedSize(kSize, false));
    for (auto _ : state)
        benchmark::DoNotOptimize(Base64::EncodeInto(Plain().data(), kSize, target.data(), false));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kSize);
}

void BM_Base64Decode(benchmark::State& state) {
    std::vector<unsigned char> target(
        Base64::DecodedCapacity(static_cast<Yr::UInt32>(Encoded().size())));
    for (auto _ : state)
        benchmark::DoNotOptimize(Base64::DecodeInto(
            Encoded().data(), static_cast<Yr::UInt32>(Encoded().size()), target.data(), false));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kSize);
}

void BM_SystemBase64Encode(benchmark::State& state) {
    const std::string path = WriteFile(".bin", Plain().data(), kSize);
    for (auto _ : state) state.SetIterationTime(TimeSystemBase64("-w0", path));
    std::remove(path.c_str());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kSize);
}

void BM_SystemBase64Decode(benchmark::State& state) {
    const std::string path = WriteFile(".b64", Encoded().data(), Encoded().size());
    for (auto _ : state) state.SetIterationTime(TimeSystemBase64("-d", path));
    std::remove(path.c_str());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kSize);
}

BENCHMARK(BM_Base64Encode)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Base64Decode)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SystemBase64Encode)->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SystemBase64Decode)->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
