#pragma once

#include "Quorvel/Platform/Files.h"

namespace quorvel::posix {

/// What a host knows about the user's disk beyond POSIX.
struct DiskConventions {
    std::optional<std::string> applicationSupportFolder;
    std::optional<std::string> stateFolder;
    bool keepsRejectedFiles = true;
};

class PosixFiles final : public Files {
public:
    explicit PosixFiles(DiskConventions conventions) : m_conventions(std::move(conventions)) { }

    std::optional<std::string> applicationSupportFolder() const override
    {
        return m_conventions.applicationSupportFolder;
    }
    std::optional<std::string> stateFolder() const override { return m_conventions.stateFolder; }
    bool keepsRejectedFiles() const override { return m_conventions.keepsRejectedFiles; }

    std::error_code createFolder(const std::string& path) override;
    bool exists(const std::string& path) const override;
    std::optional<std::string> read(const std::string& path, std::size_t limit) const override;
    std::error_code writeAtomically(const std::string& path, const std::string& bytes) override;
    std::error_code revise(const std::string& path, std::size_t limit, const Revision&) override;
    std::error_code rename(const std::string& from, const std::string& to) override;
    std::error_code remove(const std::string& path) override;
    std::vector<std::string> list(const std::string& folder) const override;

private:
    DiskConventions m_conventions;
};

}
