#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// A file in a folder of its own, in memory when /dev/shm allows, removed
// when the fuzzer exits. Each run of the fuzzer writes its input into it.
class ScratchFile {
public:
    explicit ScratchFile(const std::string& owner) {
        std::string folder = "/dev/shm/" + owner + ".XXXXXX";
        std::string fallback = "/tmp/" + owner + ".XXXXXX";
        const char* made = mkdtemp(folder.data());
        if (made == nullptr) made = mkdtemp(fallback.data());
        Check(made != nullptr);
        m_folder = made;
        m_path = m_folder + "/blocks";
    }
    ~ScratchFile() {
        std::remove(m_path.c_str());
        std::remove(m_folder.c_str());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& GetPath() const { return m_path; }

    void Write(const std::uint8_t* data, std::size_t size) const {
        std::FILE* file = std::fopen(m_path.c_str(), "wb");
        Check(file != nullptr);
        Check(size == 0 || std::fwrite(data, 1, size, file) == size);
        Check(std::fclose(file) == 0);
    }

    // A failed expectation stops the fuzzer where it is.
    static void Check(bool condition) {
        if (!condition) __builtin_trap();
    }

private:
    std::string m_folder;
    std::string m_path;
};
