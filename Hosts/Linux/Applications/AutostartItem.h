#pragma once

#include <string>

#include "Quorvel/Platform/LoginItem.h"

namespace quorvel {
class Files;
}

namespace quorvel::xdg {

/// The user's autostart file. A session starts what it names unless the file is gone or hidden;
/// a file that the user has changed keeps everything but that.
class AutostartItem final : public LoginItem {
public:
    /// `autostartFile` need not be there; `program` is what it starts.
    AutostartItem(Files& files, std::string autostartFile, std::string program)
        : m_files(files)
        , m_path(std::move(autostartFile))
        , m_program(std::move(program))
    {
    }

    /// The file's name in the autostart folder of the user.
    static std::string userFile();
    /// Where this process was started from.
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
