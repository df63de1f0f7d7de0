#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace Morvelan::Bench {

// Reproducible bytes that no stage can shortcut.
inline std::string RandomBytes(std::size_t size, unsigned seed = 42) {
    std::mt19937_64 generator(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(generator());
    return bytes;
}

}  // namespace Morvelan::Bench
