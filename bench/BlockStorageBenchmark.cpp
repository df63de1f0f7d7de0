// Block storage against the plain work under it. The cache's hit path is
// pitted against a hash map under a mutex; the block file's random reads and
// writes, through a cache of a tenth of the file, against pread and pwrite of
// the same 4 KiB blocks on a plain descriptor. The file lives on the real
// disk, written and read through once beforehand so that both sides find it
// in the page cache: what the ratios measure is the cache and the block file,
// not the device.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "Common/Containers/BlockCache.h"
#include "Common/Containers/BlockFileBase.h"
#include "Common/Containers/BlockFileHandler.h"
#include "InputOutput/Location.h"
#include "Yr/Types.h"
#include "bench/BenchmarkData.h"

namespace {

using Morvelan::Common::Containers::BlockCache;
using Morvelan::Common::Containers::BlockFileBase;
using Morvelan::Common::Containers::BlockFileHandler;

constexpr Yr::UInt32 kBlockSize = 4096;

// Cache hits: a few blocks cycled through in a cache four times their number.
constexpr Yr::UInt32 kCacheSlots = 4096;
constexpr std::size_t kHitBlocks = 1024;

// Random block I/O: a 1 GiB file (header block included), a cache of a tenth
// of it, identifiers drawn once with a fixed seed.
constexpr Yr::UInt32 kFileBlocks = (1u << 30) / kBlockSize;
constexpr Yr::UInt32 kFileCacheSize = kFileBlocks / 10;
constexpr std::size_t kSequenceLength = 1u << 20;
// Fills the cache twice over before timing, so that every timed miss replaces
// a block as it would in a long run (a modified one when writing).
constexpr std::size_t kWarmUpLength = 2 * std::size_t{kFileCacheSize};
// Fixed, so the block file is opened and warmed up once per run.
constexpr benchmark::IterationCount kFileIterations = 1 << 18;
constexpr std::size_t kFillPieceSize = 1u << 20;

// A glibc mutex costs about a third as much in a process that has never had
// a second thread as in one that has, and the change sticks: the two-thread
// runs below would make every lock-taking benchmark that happens to run after
// them (the order is shuffled) slower than the same one run before them. One
// thread at start-up puts every run, here and in the other files, in the
// state of a process with threads, the state a thread-safe cache is for.
[[maybe_unused]] const bool kProcessHasHadThreads = [] {
    std::thread([] {}).join();
    return true;
}();

// Named after the process, so that two runs at once do not meet.
std::string ScratchPath(const char* name) {
    return std::string(MORVELAN_BENCH_FOLDER) + "/" + name + "-" + std::to_string(::getpid()) +
           ".blocks";
}

::IO::Location At(const std::string& path) {
    return ::IO::Location::Parse(path.c_str());
}

// Removes its file when it goes, also when the fixture holding it fails
// half-way through being made.
struct ScratchFile {
    explicit ScratchFile(const char* name) : path(ScratchPath(name)) {}
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { std::remove(path.c_str()); }

    std::string path;
};

// A fixture made on first use and kept for the process, shared by the
// threads of a run; a failure to make it skips the benchmark.
template <typename Fixture>
Fixture* Prepared(benchmark::State& state) {
    try {
        static Fixture fixture;
        return &fixture;
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
        return nullptr;
    }
}

// Distinct identifiers in a random order.
std::vector<Yr::UInt32> HitIdentifiers() {
    std::vector<Yr::UInt32> identifiers(kCacheSlots);
    std::iota(identifiers.begin(), identifiers.end(), 1u);
    std::shuffle(identifiers.begin(), identifiers.end(), std::mt19937(42));
    identifiers.resize(kHitBlocks);
    return identifiers;
}

// Threads start apart in the cycle, as two clients would not walk in step.
std::size_t FirstHit(const benchmark::State& state) {
    return static_cast<std::size_t>(state.thread_index()) * (kHitBlocks / 2) % kHitBlocks;
}

// ---- cache hits ---------------------------------------------------------------

// The blocks lie past the end of an empty file, so loading them reads zeros
// and touches nothing; none is modified, so nothing is ever written.
class CachedBlocks {
public:
    CachedBlocks()
        : m_handler(BlockFileHandler::Create(At(m_file.path))),
          m_cache(m_handler.get(), kBlockSize, kCacheSlots, kBlockSize * 1024) {
        for (Yr::UInt32 identifier : m_identifiers) m_cache.GetBlock(identifier, false);
    }

    BlockCache& Cache() { return m_cache; }
    const std::vector<Yr::UInt32>& Identifiers() const { return m_identifiers; }

private:
    ScratchFile m_file{"cache"};
    std::unique_ptr<BlockFileHandler> m_handler;
    BlockCache m_cache;
    const std::vector<Yr::UInt32> m_identifiers = HitIdentifiers();
};

// The peer: what a minimal thread-safe cache's hit costs.
class MappedBlocks {
public:
    MappedBlocks() {
        for (std::size_t i = 0; i < m_identifiers.size(); ++i)
            m_blocks.emplace(m_identifiers[i], m_buffers.data() + i * kBlockSize);
    }

    char* Find(Yr::UInt32 identifier) {
        std::lock_guard<std::mutex> guard(m_mutex);
        const auto found = m_blocks.find(identifier);
        return found == m_blocks.end() ? nullptr : found->second;
    }
    const std::vector<Yr::UInt32>& Identifiers() const { return m_identifiers; }

private:
    const std::vector<Yr::UInt32> m_identifiers = HitIdentifiers();
    std::vector<char> m_buffers = std::vector<char>(kHitBlocks * kBlockSize);
    std::unordered_map<Yr::UInt32, char*> m_blocks;
    std::mutex m_mutex;
};

void BM_BlockCacheHit(benchmark::State& state) {
    CachedBlocks* blocks = Prepared<CachedBlocks>(state);
    if (blocks == nullptr) return;
    const std::vector<Yr::UInt32>& identifiers = blocks->Identifiers();
    std::size_t next = FirstHit(state);
    for (auto _ : state) {
        BlockCache::BlockReference reference = blocks->Cache().GetBlock(identifiers[next], false);
        benchmark::DoNotOptimize(reference.GetBuffer());
        next = (next + 1) % kHitBlocks;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_MutexMapHit(benchmark::State& state) {
    MappedBlocks* blocks = Prepared<MappedBlocks>(state);
    if (blocks == nullptr) return;
    const std::vector<Yr::UInt32>& identifiers = blocks->Identifiers();
    std::size_t next = FirstHit(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(blocks->Find(identifiers[next]));
        next = (next + 1) % kHitBlocks;
    }
    state.SetItemsProcessed(state.iterations());
}

// ---- random block I/O -----------------------------------------------------------

void CheckSystemCall(bool succeeded, const char* what) {
    if (!succeeded) throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

off_t OffsetOf(Yr::UInt32 identifier) {
    return static_cast<off_t>(identifier) * kBlockSize;
}

// The 1 GiB block file with data in every block, on disk and in the page
// cache, and the plain descriptor the peers use.
class BlockFileOnDisk {
public:
    BlockFileOnDisk() {
        CreateBlockFile();
        m_descriptor = ::open(m_file.path.c_str(), O_RDWR);
        CheckSystemCall(m_descriptor >= 0, "open");
        FillClientBlocks();
        // Written out now, so that no write-back of the fill runs while timing.
        CheckSystemCall(::fdatasync(m_descriptor) == 0, "fdatasync");
        ReadThrough();
    }
    BlockFileOnDisk(const BlockFileOnDisk&) = delete;
    BlockFileOnDisk& operator=(const BlockFileOnDisk&) = delete;
    ~BlockFileOnDisk() {
        if (m_descriptor >= 0) ::close(m_descriptor);
    }

    ::IO::Location GetLocation() const { return At(m_file.path); }
    int GetDescriptor() const { return m_descriptor; }
    Yr::UInt32 BlockAt(std::size_t index) const { return m_sequence[index % kSequenceLength]; }

private:
    // The block file writes its own header and sizes the file; the client
    // blocks get their data next.
    void CreateBlockFile() {
        BlockFileBase file(GetLocation(), kBlockSize, 16);
        while (file.GetBlockCount() < kFileBlocks) file.AllocateBlock();
        file.Close();
    }

    // Block by block, as the block file writes it. Larger writes would let the
    // kernel cache the file in large folios, and a 4 KiB write into a clean
    // large folio costs several times more (both sides alike), burying what
    // is measured here.
    void FillClientBlocks() {
        const std::string piece = Morvelan::Bench::RandomBytes(kFillPieceSize);
        for (Yr::UInt32 identifier = 1; identifier < kFileBlocks; ++identifier) {
            const char* data = piece.data() + identifier * kBlockSize % kFillPieceSize;
            CheckSystemCall(::pwrite(m_descriptor, data, kBlockSize, OffsetOf(identifier)) ==
                                static_cast<ssize_t>(kBlockSize),
                            "pwrite");
        }
    }

    void ReadThrough() {
        std::vector<char> piece(kFillPieceSize);
        ssize_t count = 0;
        off_t offset = 0;
        while ((count = ::pread(m_descriptor, piece.data(), piece.size(), offset)) > 0)
            offset += count;
        CheckSystemCall(count == 0, "pread");
    }

    static std::vector<Yr::UInt32> RandomBlocks() {
        std::mt19937 generator(7);
        std::uniform_int_distribution<Yr::UInt32> pick(1, kFileBlocks - 1);
        std::vector<Yr::UInt32> sequence(kSequenceLength);
        for (Yr::UInt32& identifier : sequence) identifier = pick(generator);
        return sequence;
    }

    ScratchFile m_file{"blockfile"};
    int m_descriptor = -1;
    const std::vector<Yr::UInt32> m_sequence = RandomBlocks();
};

void ReportBlockBytes(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlockSize);
}

// Each block copied out of the cache, or, writing, a new content copied in
// (the cache writes it back when the block is replaced).
void CopyBlock(BlockFileBase& file, Yr::UInt32 identifier, bool write, char* data) {
    char* block = file.GetBlock(identifier, write);
    if (write)
        std::memcpy(block, data, kBlockSize);
    else
        std::memcpy(data, block, kBlockSize);
    benchmark::DoNotOptimize(data);
    benchmark::ClobberMemory();
}

void BlockFileRandomBenchmark(benchmark::State& state, bool write) {
    BlockFileOnDisk* disk = Prepared<BlockFileOnDisk>(state);
    if (disk == nullptr) return;
    std::string data = Morvelan::Bench::RandomBytes(kBlockSize, 3);
    try {
        BlockFileBase file(disk->GetLocation(), kBlockSize, kFileCacheSize);
        for (std::size_t i = 0; i < kWarmUpLength; ++i)
            CopyBlock(file, disk->BlockAt(i), write, data.data());
        std::size_t next = kWarmUpLength;
        for (auto _ : state) CopyBlock(file, disk->BlockAt(next++), write, data.data());
        // What is still modified is written after timing, as a client would
        // flush at its own moment.
        file.Flush(true);
        file.Close();
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
    ReportBlockBytes(state);
}

// The peer: one positioned system call per block at the same offsets, timed
// from the same place in the sequence.
void PlainRandomBenchmark(benchmark::State& state, bool write) {
    BlockFileOnDisk* disk = Prepared<BlockFileOnDisk>(state);
    if (disk == nullptr) return;
    std::string data = Morvelan::Bench::RandomBytes(kBlockSize, 3);
    const int descriptor = disk->GetDescriptor();
    std::size_t next = kWarmUpLength;
    for (auto _ : state) {
        const off_t offset = OffsetOf(disk->BlockAt(next++));
        const ssize_t count = write ? ::pwrite(descriptor, data.data(), kBlockSize, offset)
                                    : ::pread(descriptor, data.data(), kBlockSize, offset);
        if (count != static_cast<ssize_t>(kBlockSize)) {
            state.SkipWithError("short block I/O");
            break;
        }
        benchmark::DoNotOptimize(data.data());
        benchmark::ClobberMemory();
    }
    ReportBlockBytes(state);
}

void BM_BlockFileRandomRead(benchmark::State& state) {
    BlockFileRandomBenchmark(state, false);
}
void BM_BlockFileRandomWrite(benchmark::State& state) {
    BlockFileRandomBenchmark(state, true);
}
void BM_PreadRandomRead(benchmark::State& state) {
    PlainRandomBenchmark(state, false);
}
void BM_PwriteRandomWrite(benchmark::State& state) {
    PlainRandomBenchmark(state, true);
}

BENCHMARK(BM_BlockCacheHit);
BENCHMARK(BM_MutexMapHit);
// Total operations per second of both threads: real time, not the threads'
// summed processor time.
BENCHMARK(BM_BlockCacheHit)->Threads(2)->UseRealTime();
BENCHMARK(BM_MutexMapHit)->Threads(2)->UseRealTime();
BENCHMARK(BM_BlockFileRandomRead)->Iterations(kFileIterations)->UseRealTime();
BENCHMARK(BM_PreadRandomRead)->Iterations(kFileIterations)->UseRealTime();
BENCHMARK(BM_BlockFileRandomWrite)->Iterations(kFileIterations)->UseRealTime();
BENCHMARK(BM_PwriteRandomWrite)->Iterations(kFileIterations)->UseRealTime();

}  // namespace
