#include "Quorvel/Core/SettingsSessions.h"

#include <utility>

#include "Quorvel/Core/SettingsModel.h"

namespace quorvel {

SettingsSessions::SettingsSessions(
    ControlChannel& control, Dispatch& dispatch, std::function<SettingsModel&()> model)
    : m_control(control)
    , m_dispatch(dispatch)
    , m_model(std::move(model))
{
    control.setSessionHandler(
        [this](std::unique_ptr<ControlSession> connection) { begin(std::move(connection)); });
}

SettingsSessions::~SettingsSessions()
{
    m_control.setSessionHandler({});
}

bool SettingsSessions::present()
{
    if (m_sessions.empty())
        return false;
    sendToAll(SettingsPresent{});
    for (auto& session : m_sessions)
        session.isAwaited = true;
    if (!m_silence.isPending())
        m_silence = m_dispatch.main().after(kPatience, [this] { endSilent(); });
    return true;
}

void SettingsSessions::endSilent()
{
    if (std::erase_if(m_sessions, [](auto& session) { return session.isAwaited; }) == 0)
        return;
    if (!m_sessions.empty())
        return;
    m_changes = {};
    if (onSilence)
        onSilence();
}

void SettingsSessions::begin(std::unique_ptr<ControlSession> connection)
{
    if (m_sessions.size() >= kMost)
        m_sessions.pop_front();
    auto& model = m_model();
    model.lookAgain();
    if (m_sessions.empty())
        m_changes = model.description().subscribe(
            [this](const SettingsDescription& description) { sendToAll(description); });
    auto session = m_sessions.insert(m_sessions.end(), {std::move(connection), {}});
    session->connection->onLine = [this, session](std::string_view line) { hear(*session, line); };
    session->connection->onEnd = [this, session] {
        m_sessions.erase(session);
        if (m_sessions.empty())
            m_changes = {};
    };
    describe(*session);
}

/// What makes no sense may come from a newer window.
void SettingsSessions::hear(Session& session, std::string_view line)
{
    session.isAwaited = false;
    auto request = decodeSettingsRequest(line);
    if (!request)
        return;
    if (auto* recording = std::get_if<SettingsRecording>(&*request)) {
        session.heldShortcuts = recording->isOn ? m_model().holdShortcuts() : Subscription{};
    } else if (std::holds_alternative<SettingsQuestion>(*request)) {
        m_model().lookAgain();
        describe(session);
    } else {
        apply(session, std::get<SettingsChange>(*request));
    }
}

/// It always has an answer, from which the window sees that the bar is alive.
void SettingsSessions::apply(Session& session, const SettingsChange& change)
{
    auto& description = m_model().description();
    const auto before = description.value();
    auto refusal = m_model().apply(change);
    if (refusal)
        session.connection->send(encodeSettingsNews(*refusal));
    if (refusal || description.value() == before) // what holds is what it showed before
        describe(session);
}

void SettingsSessions::describe(Session& session)
{
    session.connection->send(encodeSettingsNews(m_model().description().value()));
}

void SettingsSessions::sendToAll(const SettingsNews& news)
{
    if (m_sessions.empty())
        return;
    const auto line = encodeSettingsNews(news);
    for (auto& session : m_sessions)
        session.connection->send(line);
}

}
