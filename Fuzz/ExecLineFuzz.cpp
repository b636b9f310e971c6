#include <algorithm>
#include <string>
#include <vector>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/ExecLine.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel::xdg;

const std::vector<std::string> kFiles{"/a/it's \"b\" $(c)", "/d;e\\ #f\n"};
const ExecFields kFields{"N'ame", "icon; rm", "/x/y z.desktop", false};

/// However the rest of the line is written, a file is one argument, and nothing in its name counts.
void expectWholeFiles(const std::string& rest)
{
    for (const auto& command : commandsOf("run %F " + rest, kFields, kFiles)) {
        expect(command.size() >= 3);
        expect(command[0] == "run" && command[1] == kFiles[0] && command[2] == kFiles[1]);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string line{reinterpret_cast<const char*>(data), size};
    for (const auto& files : {std::vector<std::string>{}, kFiles}) {
        const auto commands = commandsOf(line, kFields, files);
        expect(commands.size() <= std::max<std::size_t>(files.size(), 1));
        for (const auto& command : commands)
            expect(!command.empty());
    }
    expectWholeFiles(line);
    expect(commandName(line).find('/') == std::string::npos);
    return 0;
}
