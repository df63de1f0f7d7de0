#pragma once

#include <string>

namespace Morvelan::Testing {

// A fresh, empty folder under $TMPDIR (or /tmp), removed with everything in
// it when the object goes. Throws std::system_error when none can be made.
class ScopedTempFolder final {
public:
    ScopedTempFolder();
    ~ScopedTempFolder();
    ScopedTempFolder(const ScopedTempFolder&) = delete;
    ScopedTempFolder& operator=(const ScopedTempFolder&) = delete;

    const std::string& GetPath() const { return m_path; }
    // The path of `name` inside the folder.
    std::string PathOf(const std::string& name) const;

private:
    std::string m_path;
};

}  // namespace Morvelan::Testing
