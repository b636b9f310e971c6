#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace quorvel::x11tests {

/// What a process finds set beyond the test's own environment; an empty value unsets.
using Environment = std::map<std::string, std::string>;

/// Where a process writes; an empty path throws the text away.
struct Outputs {
    std::filesystem::path output;
    std::filesystem::path error;
};

/// A child process that dies with this object, and with the test.
class Process {
public:
    Process(const std::vector<std::string>& command, const Environment&, const Outputs& = {});
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    pid_t pid() const { return m_pid; }
    bool isRunning();
    void signal(int number) const;
    /// Its status, 128 and the number where a signal ended it; absent if it runs on and on.
    std::optional<int> waitForEnd();

private:
    void collect();

    pid_t m_pid = -1;
    std::optional<int> m_status;
};

/// A command's whole life.
struct CommandResult {
    std::optional<int> status;
    std::string output;
    std::string error;
};

std::string readFile(const std::filesystem::path&);

}
