#include "Quorvel/Core/SettingsSessions.h"

#include <utility>

#include "Quorvel/Core/SettingsModel.h"

namespace quorvel {

SettingsSessions::SettingsSessions(ControlChannel& control, std::function<SettingsModel&()> model)
    : m_control(control)
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
    sendToAll(SettingsPresent{});
    return !m_sessions.empty();
}

void SettingsSessions::begin(std::unique_ptr<ControlSession> connection)
{
    if (m_sessions.size() >= kMost)
        m_sessions.pop_front();
    auto& model = m_model();
    model.refresh();
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
    auto request = decodeSettingsRequest(line);
    if (!request)
        return;
    if (auto* recording = std::get_if<SettingsRecording>(&*request)) {
        session.heldShortcuts = recording->isOn ? m_model().holdShortcuts() : Subscription{};
        return;
    }
    auto refusal = m_model().apply(std::get<SettingsChange>(*request));
    if (!refusal)
        return;
    session.connection->send(encodeSettingsNews(*refusal));
    describe(session); // what holds may be what it showed before
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
