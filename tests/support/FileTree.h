#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/support/TestFiles.h"

namespace Morvelan::Testing {

// Bytes that neither compress to nothing nor refuse to compress.
inline std::string MixedBytes(std::size_t size) {
    std::string bytes(size, '\0');
    unsigned state = 12345;
    for (std::size_t i = 0; i < size; ++i) {
        state = state * 1103515245 + 12345;
        bytes[i] = i % 3 == 0 ? static_cast<char>(state >> 24) : static_cast<char>('a' + i % 7);
    }
    return bytes;
}

// A small tree with what archivers trip over: a non-ASCII name, an empty
// file, nesting, and a file of several hundred KiB.
inline void MakeTree(const std::string& root) {
    std::filesystem::create_directories(root + "/sub/deeper");
    WriteFile(root + "/a.txt", "alpha\n");
    WriteFile(root + "/über.txt", "non-ASCII name\n");
    WriteFile(root + "/sub/empty", "");
    WriteFile(root + "/sub/deeper/big.bin", MixedBytes(700000));
}

// Every regular file below `root` by its relative path, with its content.
inline std::map<std::string, std::string> Tree(const std::string& root) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
        if (entry.is_regular_file())
            files[std::filesystem::relative(entry.path(), root).string()] =
                ReadFile(entry.path().string());
    return files;
}

}  // namespace Morvelan::Testing
