#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Morvelan::Bench {

// What the compressors meet in the field: source text and machine code. The
// corpus is the machine's C headers followed by its shared libraries, files
// in name order, cut at kCompressionCorpusSize; built once per run from the
// files present, never stored.
inline constexpr std::size_t kCompressionCorpusSize = 32u << 20;

namespace CompressionCorpusDetail {

inline std::vector<std::filesystem::path> FilesUnder(const char* folder, bool recursive,
                                                     const char* nameContains) {
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    std::error_code error;
    const auto add = [&](const fs::directory_entry& entry) {
        if (entry.is_regular_file(error) && !entry.is_symlink(error) &&
            entry.path().filename().string().find(nameContains) != std::string::npos)
            files.push_back(entry.path());
    };
    if (recursive) {
        for (const auto& entry : fs::recursive_directory_iterator(folder, error)) add(entry);
    } else {
        for (const auto& entry : fs::directory_iterator(folder, error)) add(entry);
    }
    std::sort(files.begin(), files.end());
    return files;
}

inline void AppendFiles(std::string& corpus, const std::vector<std::filesystem::path>& files,
                        std::size_t limit) {
    for (const auto& file : files) {
        if (corpus.size() >= limit) return;
        std::ifstream in(file, std::ios::binary);
        corpus.append(std::istreambuf_iterator<char>(in), {});
    }
}

}  // namespace CompressionCorpusDetail

inline const std::string& CompressionCorpus() {
    static const std::string corpus = [] {
        using namespace CompressionCorpusDetail;
        std::string bytes;
        bytes.reserve(kCompressionCorpusSize + (16u << 20));
        AppendFiles(bytes, FilesUnder("/usr/include", true, ".h"), kCompressionCorpusSize / 2);
        AppendFiles(bytes, FilesUnder("/usr/lib/x86_64-linux-gnu", false, ".so"),
                    kCompressionCorpusSize);
        bytes.resize(std::min(bytes.size(), kCompressionCorpusSize));
        return bytes;
    }();
    return corpus;
}

}  // namespace Morvelan::Bench
