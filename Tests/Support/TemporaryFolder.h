#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace quorvel::test {

/// A folder that is gone afterwards.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / "quorvel-XXXXXX";
        if (mkdtemp(name.data()))
            m_path = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}
