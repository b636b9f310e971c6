#pragma once

#include <string>

#include "Quorvel/Platform/LoginItem.h"

namespace quorvel {
class Files;
}

namespace quorvel::xdg {

/// The user's autostart file. A session starts what it names unless the file is missing or hidden;
/// in a file that the user has changed, only that state is touched.
class AutostartItem final : public LoginItem {
public:
    /// `autostartFile` need not exist; `program` is what it starts.
    AutostartItem(Files& files, std::string autostartFile, std::string program)
        : m_files(files)
        , m_path(std::move(autostartFile))
        , m_program(std::move(program))
    {
    }

    /// The path of the file in the user's autostart folder.
    static std::string userFile();
    /// The path this process was started from.
    static std::string runningProgram();

    Status status() const override;
    bool registerItem() override;
    bool unregisterItem() override;

private:
    Files& m_files;
    std::string m_path;
    std::string m_program;
};

}
