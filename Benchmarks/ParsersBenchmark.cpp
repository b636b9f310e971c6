// What reading others' texts costs, by how many entries they have. Time has to grow with the
// length, no faster.

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include "Benchmarks/Sizes.h"
#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/ExecLine.h"
#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/X11/Desktop/CompoundText.h"
#include "Hosts/X11/Desktop/Properties.h"
#include "Quorvel/Core/LSAppInfoOutput.h"
#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Quorvel/Core/UserSettingsCoding.h"

namespace quorvel::test {

namespace {

using namespace xdg::x11;

std::size_t entries(const benchmark::State& state)
{
    return std::size_t(state.range(0));
}

/// The texts for the numbers of all entries.
template <typename Write> std::string written(const benchmark::State& state, const Write& write)
{
    std::string text;
    for (std::size_t i = 0; i < entries(state); ++i) {
        const auto number = std::to_string(i);
        text += write(number);
    }
    return text;
}

/// `read` says how much it has understood.
template <typename Read>
void measure(benchmark::State& state, std::size_t expected, const Read& read)
{
    if (read() != expected)
        return state.SkipWithError("not everything is understood");
    for (auto _ : state)
        benchmark::DoNotOptimize(read());
    state.SetComplexityN(state.range(0));
}

// MARK: Applications

void listOfApplications(benchmark::State& state)
{
    const auto text = written(state, [](auto& number) {
        return number + ") \"Application\" ASN:0x0-0x1" + number + ":\n    bundleID=\"com.example.a"
            + number + "\"\n    pid = " + number + " type=\"Foreground\"\n";
    });
    measure(state, entries(state), [&] { return parseListOutput(text).size(); });
}

void commandLine(benchmark::State& state)
{
    const auto line = "program"
        + written(state, [](auto&) { return " \"an argument \\\\ with\\\" quotes\" --plain"; });
    measure(state, 1 + 2 * entries(state), [&] { return xdg::wordsOf(line).size(); });
}

/// In so many languages that are not the user's.
void desktopFile(benchmark::State& state)
{
    const std::string name = "Thing";
    const auto text = "[Desktop Entry]\nType=Application\nExec=thing\nName=" + name + '\n'
        + written(state, [](auto& number) { return "Name[l" + number + "]=Ein Ding\n"; });
    measure(state, name.size(), [&] {
        return xdg::DesktopEntryFile::of(xdg::DesktopKeyFile::parse(text).value()).name.size();
    });
}

// MARK: Properties of X windows

RawProperty property(xcb_atom_t type, const std::vector<std::uint32_t>& words)
{
    return {type, 32, std::as_bytes(std::span{words})};
}

void listOfWindows(benchmark::State& state)
{
    std::vector<std::uint32_t> windows(entries(state));
    std::iota(windows.begin(), windows.end(), 0x1200001u);
    const auto list = property(XCB_ATOM_WINDOW, windows);
    measure(state, windows.size(), [&] { return decodeWindows(list).size(); });
}

/// A square of about so many pixels.
void iconOfWindow(benchmark::State& state)
{
    const auto side = static_cast<std::uint32_t>(std::sqrt(state.range(0)));
    std::vector<std::uint32_t> words(2 + side * side, 0xFF336699);
    words[0] = words[1] = side;
    const auto icons = property(XCB_ATOM_CARDINAL, words);
    measure(state, side * side, [&] { return decodeIcons(icons).at(0).argb.size(); });
}

/// Letters of two character sets in turn.
void compoundText(benchmark::State& state)
{
    const auto text = written(state, [](auto&) { return "a\x1b-B\xb1"; });
    constexpr std::size_t bytes = std::string_view{"aą"}.size();
    measure(state, bytes * entries(state), [&] { return decodeCompoundText(text).size(); });
}

// MARK: What comes over the control socket

void controlRequest(benchmark::State& state)
{
    const auto text = posix::encodeRequest(std::vector<std::string>(entries(state), "--argument"));
    measure(state, entries(state), [&] { return posix::decodeRequest(text).value().size(); });
}

/// As many at a time as are read from a socket.
void controlLines(benchmark::State& state)
{
    constexpr std::size_t atOnce = 4096;
    const auto text = written(state, [](auto& number) { return "{\"number\":" + number + "}\n"; });
    measure(state, entries(state), [&] {
        posix::LineReader reader{posix::kLongestRequest};
        std::size_t lines = 0;
        for (std::string_view rest = text; !rest.empty();
            rest.remove_prefix(std::min(atOnce, rest.size()))) {
            reader.add(rest.substr(0, atOnce));
            while (reader.next())
                ++lines;
        }
        return lines;
    });
}

// MARK: The program's own files

void settingsFile(benchmark::State& state)
{
    UserSettingsData data;
    for (std::size_t i = 0; i < entries(state); ++i)
        data.pinnedApps.push_back({"com.example.a" + std::to_string(i), 1});
    const auto bytes = encodeUserSettings(data);
    measure(state, entries(state),
        [&] { return decodeUserSettings(bytes, {}).value().pinnedApps.size(); });
}

/// On as many spaces as it takes to remember so many windows.
void rememberedOrder(benchmark::State& state)
{
    RememberedOrder order;
    for (std::size_t i = 0; i < entries(state); ++i) {
        if (i % OrderLimits::windows == 0)
            order.spaces.emplace_back();
        order.spaces.back().windows.push_back({.number = std::uint32_t(i),
            .application = "com.example.a" + std::to_string(i),
            .title = "Window " + std::to_string(i)});
    }
    const auto bytes = encodeOrders({order});
    measure(state, entries(state), [&] {
        std::size_t windows = 0;
        for (auto& space : decodeOrders(bytes).value().at(0).spaces)
            windows += space.windows.size();
        return windows;
    });
}

BENCHMARK(listOfApplications)->Apply(sizes);
BENCHMARK(commandLine)->Apply(sizes);
BENCHMARK(desktopFile)->Apply(sizes);
BENCHMARK(listOfWindows)->Apply(sizes);
BENCHMARK(iconOfWindow)->Apply(sizes);
BENCHMARK(compoundText)->Apply(sizes);
BENCHMARK(controlRequest)->Apply(sizes);
BENCHMARK(controlLines)->Apply(sizes);
BENCHMARK(settingsFile)->Apply(sizes);
BENCHMARK(rememberedOrder)->Apply(sizes);

}

}
