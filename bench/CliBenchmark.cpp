// `morvelan archive` against tar, and `morvelan zip` against Info-ZIP, end to end: a real folder
// tree of the machine archived from disk to disk and extracted into memory, one process per
// iteration. Both sides are held to one processor, so tar cannot hand its compression to a second
// one and the figures compare the work done. The tree and the archives to extract are made once per
// run; removing the previous output and warming the input are left out of the timing, which covers
// the child process alone.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMinimumTreeFiles = 5000;
constexpr std::uintmax_t kMinimumTreeBytes = 100u << 20;
constexpr int kIterations = 3;

const std::string kWorkFolder = MORVELAN_BENCH_FOLDER;
const std::string kTreeName = "bench-tree";

struct TreeSize {
    std::uintmax_t files = 0;
    std::uintmax_t bytes = 0;
};

// Regular files and folders only: links and devices say nothing about
// archiving speed and some would lead out of the tree.
TreeSize SizeOf(const fs::path& folder) {
    TreeSize size;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        if (entry.is_regular_file(error) && !entry.is_symlink(error)) {
            ++size.files;
            size.bytes += entry.file_size(error);
        }
    }
    return size;
}

void CopyTree(const fs::path& source, const fs::path& target) {
    std::error_code error;
    fs::create_directories(target, error);
    for (auto it = fs::recursive_directory_iterator(
             source, fs::directory_options::skip_permission_denied, error);
         it != fs::recursive_directory_iterator(); it.increment(error)) {
        const fs::path copy = target / fs::relative(it->path(), source, error);
        if (it->is_symlink(error)) continue;
        if (it->is_directory(error))
            fs::create_directories(copy, error);
        else if (it->is_regular_file(error))
            fs::copy_file(it->path(), copy, error);
    }
}

// Made afresh on first use, so every run archives the same kind of tree.
const TreeSize& Tree() {
    static const TreeSize size = [] {
        const fs::path tree = fs::path(kWorkFolder) / kTreeName;
        fs::remove_all(tree);
        // The tree and the archives read by the extractions take about a
        // gigabyte of the build folder: they go with the run.
        std::atexit([] {
            std::error_code ignored;
            for (const auto& entry : fs::directory_iterator(kWorkFolder, ignored))
                if (entry.path().filename().string().starts_with("cli-bench-in."))
                    fs::remove(entry.path(), ignored);
            fs::remove_all(fs::path(kWorkFolder) / kTreeName, ignored);
        });
        const char* sources[] = {"/usr/include", "/usr/share/doc", "/usr/share/man",
                                 "/usr/share/locale"};
        TreeSize copied;
        for (std::size_t i = 0; i < std::size(sources); ++i) {
            if (i >= 2 && copied.files >= kMinimumTreeFiles && copied.bytes >= kMinimumTreeBytes)
                break;
            CopyTree(sources[i], tree / fs::path(sources[i]).filename());
            copied = SizeOf(tree);
        }
        return copied;
    }();
    return size;
}

// Reads the files once through, so that each iteration starts from the page
// cache: left alone for a while, their pages do not stay there on every
// machine.
void Warm(const fs::path& path) {
    std::vector<char> buffer(1 << 20);
    const auto readFile = [&](const fs::path& file) {
        const int descriptor = open(file.c_str(), O_RDONLY);
        if (descriptor < 0) return;
        while (read(descriptor, buffer.data(), buffer.size()) > 0) {
        }
        close(descriptor);
    };
    std::error_code error;
    if (!fs::is_directory(path, error)) return readFile(path);
    for (const auto& entry : fs::recursive_directory_iterator(path, error))
        if (entry.is_regular_file(error) && !entry.is_symlink(error)) readFile(entry.path());
}

bool TreeReady(benchmark::State& state) {
    if (Tree().files < kMinimumTreeFiles || Tree().bytes < kMinimumTreeBytes) {
        state.SkipWithError("not enough files on this machine for the tree");
        return false;
    }
    return true;
}

// A folder in memory, so extraction measures the tools, not the disk.
const std::string& ExtractionRoot() {
    static const std::string root = [] {
        std::string pattern = (fs::is_directory("/dev/shm") ? std::string("/dev/shm")
                                                            : fs::temp_directory_path().string()) +
                              "/morvelan-cli-bench-XXXXXX";
        return ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
    }();
    // Registered after the path, so it runs while the path is still there.
    [[maybe_unused]] static const int removal = std::atexit([] {
        std::error_code ignored;
        if (!ExtractionRoot().empty()) fs::remove_all(ExtractionRoot(), ignored);
    });
    return root;
}

int FirstAllowedProcessor() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0)
        for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu)
            if (CPU_ISSET(cpu, &allowed)) return cpu;
    return 0;
}

// Runs the command from the work folder on one processor, its output
// discarded; true when it exits with 0.
bool Run(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    static const int processor = FirstAllowedProcessor();
    const pid_t child = fork();
    if (child == 0) {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(processor, &one);
        sched_setaffinity(0, sizeof one, &one);
        const int null = open("/dev/null", O_WRONLY);
        if (null < 0 || dup2(null, STDOUT_FILENO) < 0 || chdir(kWorkFolder.c_str()) != 0)
            _exit(126);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Seconds taken by the command; negative when it failed.
double TimedRun(const std::vector<std::string>& arguments) {
    const auto start = std::chrono::steady_clock::now();
    const bool succeeded = Run(arguments);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return succeeded ? elapsed.count() : -1.0;
}

// How each side writes and reads one kind of archive.
struct Format {
    std::string extension;
    std::vector<std::string> create;   // followed by the archive and the tree
    std::vector<std::string> extract;  // followed by the archive, the flag and the folder
    std::string folderFlag = "-C";
};

const Format kOurs[] = {
    {".stored.mar",
     {MORVELAN_TOOL, "archive", "create", "--method", "stored"},
     {MORVELAN_TOOL, "archive", "extract"}},
    {".deflated.mar",
     {MORVELAN_TOOL, "archive", "create", "--method", "deflated", "--level", "6"},
     {MORVELAN_TOOL, "archive", "extract"}},
    {".quicklz.mar",
     {MORVELAN_TOOL, "archive", "create", "--method", "quicklz"},
     {MORVELAN_TOOL, "archive", "extract"}},
};
// gzip's level is 6 unless told otherwise.
const Format kTar[] = {
    {".tar", {"tar", "cf"}, {"tar", "xf"}},
    {".tar.gz", {"tar", "czf"}, {"tar", "xzf"}},
    {".tar.lz4", {"tar", "-I", "lz4", "-cf"}, {"tar", "-I", "lz4", "-xf"}},
};
const Format kOurZip = {
    ".zip", {MORVELAN_TOOL, "zip", "create", "--level", "6"}, {MORVELAN_TOOL, "zip", "extract"}};
const Format kInfoZip = {".info.zip", {"zip", "-r", "-q", "-6"}, {"unzip", "-q"}, "-d"};

std::vector<std::string> CreateCommand(const Format& format, const std::string& archive) {
    std::vector<std::string> command = format.create;
    command.push_back(archive);
    command.push_back(kTreeName);
    return command;
}

std::vector<std::string> ExtractCommand(const Format& format, const std::string& archive,
                                        const std::string& folder) {
    std::vector<std::string> command = format.extract;
    command.insert(command.end(), {archive, format.folderFlag, folder});
    return command;
}

bool ToolReady(benchmark::State& state, const Format& format) {
    if (format.create[0] == MORVELAN_TOOL && !fs::exists(MORVELAN_TOOL)) {
        state.SkipWithError("the morvelan tool is not built");
        return false;
    }
    return TreeReady(state);
}

void Report(benchmark::State& state, std::uintmax_t archiveSize) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Tree().bytes));
    state.counters["files"] = static_cast<double>(Tree().files);
    if (archiveSize > 0)
        state.counters["compression_ratio"] =
            static_cast<double>(Tree().bytes) / static_cast<double>(archiveSize);
}

void CreateBenchmark(benchmark::State& state, const Format& format) {
    if (!ToolReady(state, format)) return;
    const std::string archive = kWorkFolder + "/cli-bench-out" + format.extension;
    for (auto _ : state) {
        fs::remove(archive);
        // Leaves no write-back of the last output to slow this one.
        sync();
        Warm(fs::path(kWorkFolder) / kTreeName);
        const double seconds = TimedRun(CreateCommand(format, archive));
        if (seconds < 0) {
            state.SkipWithError("the archiver failed");
            break;
        }
        state.SetIterationTime(seconds);
    }
    std::error_code error;
    Report(state, fs::file_size(archive, error));
    fs::remove(archive, error);
}

// The archive each extraction reads, written once per run by the same side.
const std::string& InputArchive(const Format& format) {
    static std::map<std::string, std::string> made;
    std::string& archive = made[format.extension];
    if (archive.empty()) {
        const std::string path = kWorkFolder + "/cli-bench-in" + format.extension;
        fs::remove(path);
        if (Run(CreateCommand(format, path))) archive = path;
    }
    return archive;
}

void ExtractBenchmark(benchmark::State& state, const Format& format) {
    if (!ToolReady(state, format)) return;
    const std::string& archive = InputArchive(format);
    if (archive.empty() || ExtractionRoot().empty()) {
        state.SkipWithError("no archive or no folder to extract into");
        return;
    }
    const std::string folder = ExtractionRoot() + "/out";
    for (auto _ : state) {
        fs::remove_all(folder);
        fs::create_directory(folder);
        Warm(archive);
        const double seconds = TimedRun(ExtractCommand(format, archive, folder));
        if (seconds < 0) {
            state.SkipWithError("the extractor failed");
            break;
        }
        state.SetIterationTime(seconds);
    }
    const TreeSize extracted = SizeOf(folder);
    if (extracted.files != Tree().files || extracted.bytes != Tree().bytes)
        state.SkipWithError("the extraction is not the tree");
    fs::remove_all(folder);
    Report(state, 0);
}

void BM_CliCreateStored(benchmark::State& state) {
    CreateBenchmark(state, kOurs[0]);
}
void BM_CliTarCreateStored(benchmark::State& state) {
    CreateBenchmark(state, kTar[0]);
}
void BM_CliCreateDeflated(benchmark::State& state) {
    CreateBenchmark(state, kOurs[1]);
}
void BM_CliTarCreateDeflated(benchmark::State& state) {
    CreateBenchmark(state, kTar[1]);
}
void BM_CliCreateQuickLZ(benchmark::State& state) {
    CreateBenchmark(state, kOurs[2]);
}
void BM_CliTarCreateQuickLZ(benchmark::State& state) {
    CreateBenchmark(state, kTar[2]);
}
void BM_CliExtractStored(benchmark::State& state) {
    ExtractBenchmark(state, kOurs[0]);
}
void BM_CliTarExtractStored(benchmark::State& state) {
    ExtractBenchmark(state, kTar[0]);
}
void BM_CliExtractDeflated(benchmark::State& state) {
    ExtractBenchmark(state, kOurs[1]);
}
void BM_CliTarExtractDeflated(benchmark::State& state) {
    ExtractBenchmark(state, kTar[1]);
}
void BM_CliExtractQuickLZ(benchmark::State& state) {
    ExtractBenchmark(state, kOurs[2]);
}
void BM_CliTarExtractQuickLZ(benchmark::State& state) {
    ExtractBenchmark(state, kTar[2]);
}
void BM_CliZipCreate(benchmark::State& state) {
    CreateBenchmark(state, kOurZip);
}
void BM_CliInfoZipCreate(benchmark::State& state) {
    CreateBenchmark(state, kInfoZip);
}
void BM_CliZipExtract(benchmark::State& state) {
    ExtractBenchmark(state, kOurZip);
}
void BM_CliInfoZipExtract(benchmark::State& state) {
    ExtractBenchmark(state, kInfoZip);
}

#define CLI_BENCHMARK(function) \
    BENCHMARK(function)->Iterations(kIterations)->UseManualTime()->Unit(benchmark::kMillisecond)

CLI_BENCHMARK(BM_CliCreateStored);
CLI_BENCHMARK(BM_CliTarCreateStored);
CLI_BENCHMARK(BM_CliCreateDeflated);
CLI_BENCHMARK(BM_CliTarCreateDeflated);
CLI_BENCHMARK(BM_CliCreateQuickLZ);
CLI_BENCHMARK(BM_CliTarCreateQuickLZ);
CLI_BENCHMARK(BM_CliExtractStored);
CLI_BENCHMARK(BM_CliTarExtractStored);
CLI_BENCHMARK(BM_CliExtractDeflated);
CLI_BENCHMARK(BM_CliTarExtractDeflated);
CLI_BENCHMARK(BM_CliExtractQuickLZ);
CLI_BENCHMARK(BM_CliTarExtractQuickLZ);
CLI_BENCHMARK(BM_CliZipCreate);
CLI_BENCHMARK(BM_CliInfoZipCreate);
CLI_BENCHMARK(BM_CliZipExtract);
CLI_BENCHMARK(BM_CliInfoZipExtract);

}  // namespace
