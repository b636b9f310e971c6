#include "Tests/Support/FakeDesktop.h"

#include <algorithm>

namespace quorvel::test {

FakeDesktop::FakeDesktop()
{
    m_model.displays.push_back({.number = DisplayNumber{1},
        .identifier = "37D8832A-2D66-02CA-B9F7-8F30A301B230",
        .frame = {0, 0, 1440, 900},
        .visibleFrame = {0, 0, 1440, 875},
        .spaces = {{SpaceID{1}}, {SpaceID{2}}, {SpaceID{3}}},
        .current = SpaceID{1}});
}

Platform FakeDesktop::platform()
{
    return {m_dispatch, m_accessibility, m_windowServer, m_displays, m_workspace, m_bundles,
        m_fileEvents, m_screenCapture, m_program, m_surfaces, m_text, m_control, m_files,
        m_loginItem, m_launchServices, m_trace, m_hasDockAndUpdater ? &m_dock : nullptr,
        m_hasDockAndUpdater ? &m_updater : nullptr, &m_hotkeys,
        m_hasSettingsWindow ? &m_settingsWindow : nullptr, &m_applicationMatching, &m_peeking};
}

void FakeDesktop::install(const std::string& path, BundleDescription description)
{
    if (description.identifier)
        m_workspace.install(*description.identifier, path);
    m_bundles.install(path, std::move(description));
    m_fileEvents.change(path);
}

void FakeDesktop::uninstall(const std::string& path)
{
    m_workspace.uninstall(path);
    m_bundles.remove(path);
    m_fileEvents.change(path);
}

FakeApplication& FakeDesktop::application(ProcessID pid)
{
    return m_model.applications.at(pid);
}

FakeWindow& FakeDesktop::window(WindowID id)
{
    return *m_model.windows.at(id);
}

ProcessID FakeDesktop::launch(const LaunchOptions& options)
{
    ProcessID pid{m_nextPID++};
    RunningApplication info{.pid = pid,
        .bundleIdentifier = options.bundleIdentifier,
        .localizedName = options.name,
        .activationPolicy = options.policy};
    m_model.applications[pid]
        = {.info = info, .answersFrom = m_dispatch.now() + options.startsAnsweringAfter};
    if (options.bundleIdentifier)
        m_workspace.install(*options.bundleIdentifier, "/Applications/" + options.name + ".app");
    post([this, info] { m_workspace.didLaunch.emit(info); });
    return pid;
}

void FakeDesktop::terminate(ProcessID pid)
{
    for (auto* window : m_model.windowsOf(pid))
        close(window->id);
    end(pid);
}

void FakeDesktop::crash(ProcessID pid)
{
    for (auto* window : m_model.windowsOf(pid))
        forget(window->id);
    end(pid);
}

void FakeDesktop::end(ProcessID pid)
{
    auto info = application(pid).info;
    info.isTerminated = true;
    m_model.applications.erase(pid);
    if (m_model.frontmost == pid)
        m_model.frontmost.reset();
    post([this, info] { m_workspace.didTerminate.emit(info); });
}

void FakeDesktop::activate(ProcessID pid)
{
    if (m_model.frontmost == pid)
        return;
    m_model.frontmost = pid;
    post([this, info = application(pid).info] { m_workspace.didActivate.emit(info); });
}

void FakeDesktop::setHidden(ProcessID pid, bool isHidden)
{
    auto& info = application(pid).info;
    info.isHidden = isHidden;
    auto& signal = isHidden ? m_workspace.didHide : m_workspace.didUnhide;
    post([&signal, info] { signal.emit(info); });
}

WindowID FakeDesktop::open(ProcessID pid, const OpenOptions& options)
{
    WindowID id{m_nextWindow++};
    auto window = std::make_unique<FakeWindow>(FakeWindow{options, id, pid});
    if (window->spaces.empty() && !m_model.displays.empty())
        window->spaces = {m_model.displays.front().current};
    window->inAccessibilityFrom = m_dispatch.now() + options.accessibilityDelay;
    window->inServerFrom = m_dispatch.now() + options.serverDelay;
    m_model.windows[id] = std::move(window);
    m_model.stacking.insert(m_model.stacking.begin(), id);
    if (options.takesFocus && !options.isMinimized)
        application(pid).focusedWindow = application(pid).mainWindow = id;
    if (options.accessibilityDelay > Duration::zero())
        m_arrivals.push_back(
            m_dispatch.world().after(options.accessibilityDelay, [this, id] { appear(id); }));
    else
        appear(id);
    return id;
}

void FakeDesktop::appear(WindowID id)
{
    auto* window = m_model.window(id);
    if (!window)
        return;
    announce(id, ax::windowCreated);
    if (application(window->pid).focusedWindow == id)
        announceFocus(window->pid);
}

void FakeDesktop::close(WindowID id)
{
    auto pid = window(id).pid;
    announce(id, ax::elementDestroyed);
    forget(id);
    focusNext(pid);
}

void FakeDesktop::forget(WindowID id)
{
    if (m_windowServer.closeDelay() > Duration::zero())
        m_model.ghosts.push_back(
            {.window = window(id), .until = m_dispatch.now() + m_windowServer.closeDelay()});
    m_model.windows.erase(id);
    std::erase(m_model.stacking, id);
}

// The application goes on with its next window, if it has one to show.
void FakeDesktop::focusNext(ProcessID pid)
{
    auto& owner = application(pid);
    if (owner.focusedWindow && m_model.window(*owner.focusedWindow)
        && !window(*owner.focusedWindow).isMinimized)
        return;
    owner.focusedWindow = owner.mainWindow = std::nullopt;
    for (auto* candidate : m_model.windowsOf(pid)) {
        if (candidate->isMinimized)
            continue;
        owner.focusedWindow = owner.mainWindow = candidate->id;
        announceFocus(pid);
        return;
    }
}

void FakeDesktop::retitle(WindowID id, const std::string& title)
{
    window(id).title = title;
    announce(id, ax::titleChanged);
}

void FakeDesktop::place(WindowID id, const Rect& frame)
{
    auto old = std::exchange(window(id).frame, frame);
    if (old.origin() != frame.origin())
        announce(id, ax::windowMoved);
    if (old.size() != frame.size())
        announce(id, ax::windowResized);
}

void FakeDesktop::move(WindowID id, Point origin)
{
    place(id, Rect::from(origin, window(id).frame.size()));
}

void FakeDesktop::resize(WindowID id, Size size)
{
    place(id, Rect::from(window(id).frame.origin(), size));
}

void FakeDesktop::minimise(WindowID id)
{
    if (std::exchange(window(id).isMinimized, true))
        return;
    announce(id, ax::windowMiniaturized);
    focusNext(window(id).pid);
}

void FakeDesktop::restore(WindowID id)
{
    if (!std::exchange(window(id).isMinimized, false))
        return;
    announce(id, ax::windowDeminiaturized);
    focus(id);
}

void FakeDesktop::focus(WindowID id)
{
    std::erase(m_model.stacking, id);
    m_model.stacking.insert(m_model.stacking.begin(), id);
    auto& owner = application(window(id).pid);
    owner.mainWindow = id;
    if (std::exchange(owner.focusedWindow, id) != id)
        announceFocus(owner.info.pid);
}

void FakeDesktop::moveToSpace(WindowID id, SpaceID space)
{
    setSpaces(id, {space});
}

void FakeDesktop::setOnEverySpace(WindowID id, bool isOnEvery)
{
    auto& display = m_model.displays.front();
    std::set<SpaceID> spaces{display.current};
    for (auto& space : display.spaces) {
        if (isOnEvery)
            spaces.insert(space.id);
    }
    setSpaces(id, std::move(spaces));
}

void FakeDesktop::setSpaces(WindowID id, std::set<SpaceID> spaces)
{
    window(id).spaces = std::move(spaces);
    if (m_givesSpaceHints)
        post([this] { m_windowServer.spacesOfWindowsDidChange.emit(); });
}

void FakeDesktop::activateSpace(SpaceID space)
{
    auto* display = m_model.displayOfSpace(space);
    if (!display || display->current == space)
        return;
    display->current = space;
    if (auto* held = m_held ? m_model.window(m_held->window) : nullptr) {
        if (std::ranges::any_of(
                held->spaces, [&](SpaceID id) { return m_model.displayOfSpace(id) == display; }))
            held->spaces = {space};
    }
    post([this] { m_workspace.activeSpaceDidChange.emit(); });
}

void FakeDesktop::setDisplays(std::vector<FakeDisplay> displays)
{
    m_model.displays = std::move(displays);
    post([this] { m_displays.parametersDidChange.emit(); });
}

void FakeDesktop::handPointer(PointerPost post, Point at)
{
    constexpr double titleBarHeight = 28;
    m_model.pointer = at;
    if (post == PointerPost::pressed) {
        auto top = std::ranges::find_if(m_model.stacking, [&](WindowID id) {
            auto& candidate = window(id);
            return !candidate.isMinimized && candidate.frame.contains(at)
                && std::ranges::any_of(
                    candidate.spaces, [&](SpaceID space) { return m_model.isCurrent(space); });
        });
        if (top != m_model.stacking.end() && at.y < window(*top).frame.y + titleBarHeight)
            m_held = Held{*top, at};
        return;
    }
    if (!m_held || !m_model.window(m_held->window))
        return m_held.reset();
    auto from = std::exchange(m_held->from, at);
    auto& held = window(m_held->window);
    if (post == PointerPost::dragged)
        move(held.id, held.frame.origin().translated(at.x - from.x, at.y - from.y));
    if (post != PointerPost::released)
        return;
    if (auto display = m_displays.displayAt(held.frame.centre());
        display && m_model.displaysHaveSeparateSpaces)
        held.spaces = {m_model.display(*display)->current};
    m_held.reset();
}

void FakeDesktop::wake()
{
    post([this] { m_workspace.didWake.emit(); });
}

void FakeDesktop::announce(WindowID id, std::string_view notification)
{
    m_accessibility.notify(window(id).pid, m_accessibility.windowElement(id), notification);
}

void FakeDesktop::announceFocus(ProcessID pid)
{
    if (auto focused = application(pid).focusedWindow)
        announce(*focused, ax::focusedWindowChanged);
}

}
