#include "tests/support/ScopedTempFolder.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

namespace Morvelan::Testing {

ScopedTempFolder::ScopedTempFolder() {
    const char* root = std::getenv("TMPDIR");
    std::string pattern =
        (root && *root ? std::string(root) : std::string("/tmp")) + "/morvelan-test-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (::mkdtemp(buffer.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + pattern);
    m_path = buffer.data();
}

ScopedTempFolder::~ScopedTempFolder() {
    // Tests may have taken permissions away; give them back so removal works.
    std::error_code ignored;
    for (auto it = std::filesystem::recursive_directory_iterator(m_path, ignored);
         it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
        std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
    }
    std::filesystem::remove_all(m_path, ignored);
}

std::string ScopedTempFolder::PathOf(const std::string& name) const {
    return m_path + "/" + name;
}

}  // namespace Morvelan::Testing
