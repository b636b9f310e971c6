#include "Tests/Support/FakeFiles.h"

namespace quorvel::test {

namespace {

std::string parentOf(const std::string& path)
{
    return path.substr(0, path.find_last_of('/'));
}

}

std::error_code FakeFiles::refusal(Step step, const std::string& path) const
{
    if (m_failing.contains(step))
        return std::make_error_code(std::errc::io_error);
    if (m_isReadOnly)
        return std::make_error_code(std::errc::read_only_file_system);
    if (m_isFull && step != Step::rename && step != Step::remove)
        return std::make_error_code(std::errc::no_space_on_device);
    if (m_files.contains(parentOf(path)))
        return std::make_error_code(std::errc::not_a_directory);
    if (!isFolder(parentOf(path)))
        return std::make_error_code(std::errc::no_such_file_or_directory);
    return {};
}

std::error_code FakeFiles::createFolder(const std::string& path)
{
    if (isFolder(path))
        return {};
    if (!isFolder(parentOf(path)) && !m_files.contains(parentOf(path))) {
        if (auto error = createFolder(parentOf(path)))
            return error;
    }
    if (m_files.contains(path))
        return std::make_error_code(std::errc::file_exists);
    auto error = refusal(Step::createFolder, path);
    if (!error)
        m_folders.insert(path);
    return error;
}

bool FakeFiles::exists(const std::string& path) const
{
    return isFolder(path) || m_files.contains(path);
}

std::optional<std::string> FakeFiles::read(const std::string& path, std::size_t limit) const
{
    auto found = bytes(path);
    if (m_failing.contains(Step::read) || !found || found->size() > limit)
        return std::nullopt;
    return found;
}

std::error_code FakeFiles::writeAtomically(const std::string& path, const std::string& bytes)
{
    if (isFolder(path))
        return std::make_error_code(std::errc::is_a_directory);
    auto error = refusal(Step::write, path);
    if (error)
        return error;
    m_files[path] = bytes;
    ++m_writes;
    m_afterChange();
    return {};
}

std::error_code FakeFiles::revise(
    const std::string& path, std::size_t limit, const Revision& revision)
{
    auto bytes = revision(read(path, limit));
    return bytes ? writeAtomically(path, *bytes)
                 : std::make_error_code(std::errc::operation_canceled);
}

std::error_code FakeFiles::rename(const std::string& from, const std::string& to)
{
    if (auto error = refusal(Step::rename, to))
        return error;
    if (!m_files.contains(from))
        return std::make_error_code(std::errc::no_such_file_or_directory);
    if (exists(to))
        return std::make_error_code(std::errc::file_exists);
    m_files[to] = m_files[from];
    m_files.erase(from);
    return {};
}

std::error_code FakeFiles::remove(const std::string& path)
{
    if (auto error = refusal(Step::remove, path))
        return error;
    if (m_files.erase(path) == 0)
        return std::make_error_code(std::errc::no_such_file_or_directory);
    m_afterChange();
    return {};
}

std::vector<std::string> FakeFiles::list(const std::string& folder) const
{
    std::vector<std::string> names;
    for (auto& [path, bytes] : m_files) {
        if (parentOf(path) == folder)
            names.push_back(path.substr(folder.size() + 1));
    }
    return names;
}

void FakeFiles::put(const std::string& path, std::string bytes)
{
    for (auto folder = parentOf(path); !folder.empty(); folder = parentOf(folder))
        m_folders.insert(folder);
    m_files[path] = std::move(bytes);
}

std::optional<std::string> FakeFiles::bytes(const std::string& path) const
{
    auto found = m_files.find(path);
    return found == m_files.end() ? std::nullopt : std::optional{found->second};
}

}
