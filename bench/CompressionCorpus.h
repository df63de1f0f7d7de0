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

}  // namespace CompressionCorpusDetail

// One file of the corpus: where its bytes lie in CompressionCorpus(). The
// last file may be cut short by the corpus size.
struct CompressionCorpusFile {
    std::string name;
    std::size_t offset = 0;
    std::size_t size = 0;
};

namespace CompressionCorpusDetail {

struct Corpus {
    std::string bytes;
    std::vector<CompressionCorpusFile> files;
};

inline void AppendFiles(Corpus& corpus, const std::vector<std::filesystem::path>& files,
                        std::size_t limit) {
    for (const auto& file : files) {
        if (corpus.bytes.size() >= limit) return;
        std::ifstream in(file, std::ios::binary);
        const std::size_t offset = corpus.bytes.size();
        corpus.bytes.append(std::istreambuf_iterator<char>(in), {});
        if (corpus.bytes.size() > offset)
            corpus.files.push_back({file.string(), offset, corpus.bytes.size() - offset});
    }
}

inline const Corpus& TheCorpus() {
    static const Corpus corpus = [] {
        Corpus built;
        built.bytes.reserve(kCompressionCorpusSize + (16u << 20));
        AppendFiles(built, FilesUnder("/usr/include", true, ".h"), kCompressionCorpusSize / 2);
        AppendFiles(built, FilesUnder("/usr/lib/x86_64-linux-gnu", false, ".so"),
                    kCompressionCorpusSize);
        built.bytes.resize(std::min(built.bytes.size(), kCompressionCorpusSize));
        // The cut may shorten the last file or drop it.
        while (!built.files.empty() && built.files.back().offset >= built.bytes.size())
            built.files.pop_back();
        if (!built.files.empty())
            built.files.back().size = built.bytes.size() - built.files.back().offset;
        return built;
    }();
    return corpus;
}

}  // namespace CompressionCorpusDetail

inline const std::string& CompressionCorpus() {
    return CompressionCorpusDetail::TheCorpus().bytes;
}

// The corpus file by file, in corpus order; empty files are left out.
inline const std::vector<CompressionCorpusFile>& CompressionCorpusFiles() {
    return CompressionCorpusDetail::TheCorpus().files;
}

}  // namespace Morvelan::Bench
