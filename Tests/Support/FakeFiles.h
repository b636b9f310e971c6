#pragma once

#include <functional>
#include <map>
#include <set>

#include "Quorvel/Platform/Files.h"

namespace quorvel::test {

/// A disk in memory. It can be full, read-only, or fail at one kind of step; a file can stand where
/// a folder should be.
class FakeFiles final : public Files {
public:
    enum class Step { createFolder, read, write, rename, remove };

    static constexpr char kSettingsFile[] = "/support/Quorvel/settings.json";
    static constexpr char kOrderFile[] = "/state/Quorvel/order.json";

    std::optional<std::string> applicationSupportFolder() const override { return m_support; }
    std::optional<std::string> stateFolder() const override { return m_state; }
    bool keepsRejectedFiles() const override { return m_keepsRejectedFiles; }
    std::error_code createFolder(const std::string& path) override;
    bool exists(const std::string& path) const override;
    std::optional<std::string> read(const std::string& path, std::size_t limit) const override;
    std::error_code writeAtomically(const std::string& path, const std::string& bytes) override;
    std::error_code revise(const std::string& path, std::size_t limit, const Revision&) override;
    std::error_code rename(const std::string& from, const std::string& to) override;
    std::error_code remove(const std::string& path) override;
    std::vector<std::string> list(const std::string& folder) const override;

    /// What somebody else put there: the folders above come with it.
    void put(const std::string& path, std::string bytes);
    /// Absent if there is no such file; whatever faults there are.
    std::optional<std::string> bytes(const std::string& path) const;
    const std::map<std::string, std::string>& files() const { return m_files; }
    int writes() const { return m_writes; } ///< that succeeded

    void setSupportFolder(std::optional<std::string> folder) { m_support = std::move(folder); }
    void setKeepsRejectedFiles(bool value) { m_keepsRejectedFiles = value; }
    void setFull(bool value) { m_isFull = value; }
    void setReadOnly(bool value) { m_isReadOnly = value; }
    /// Called after each change of a file that the program made.
    void setAfterChange(std::function<void()> call) { m_afterChange = std::move(call); }
    void setFailing(std::set<Step> steps) { m_failing = std::move(steps); }

private:
    /// Why a step that changes something cannot be done; no error if it can.
    std::error_code refusal(Step, const std::string& path) const;
    bool isFolder(const std::string& path) const { return m_folders.contains(path); }

    std::optional<std::string> m_support = "/support";
    std::optional<std::string> m_state = "/state";
    std::map<std::string, std::string> m_files;
    std::set<std::string> m_folders{"", "/support", "/state"};
    std::set<Step> m_failing;
    bool m_keepsRejectedFiles = true;
    bool m_isFull = false;
    bool m_isReadOnly = false;
    int m_writes = 0;
    std::function<void()> m_afterChange = [] { };
};

}
