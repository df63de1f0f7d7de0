#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "InputOutput/Location.h"

namespace Morvelan::Testing {

// Whole files written and read behind the library's back, to set up and
// check what it did.
inline void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

inline std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline ::IO::Location At(const std::string& path) { return ::IO::Location::Parse(path.c_str()); }

}  // namespace Morvelan::Testing
