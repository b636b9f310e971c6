#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::test {

class VirtualDispatch;

/// An application as the system's tool lists it.
struct ListedApplication {
    std::string name;
    std::string serial; ///< as in "0x0-0x2a02a"
    std::int64_t pid = 0;
    bool wantsAttention = false;
};

/// What applications show and want, and the tool that lists them and withdraws their requests.
class FakeLaunchServices final : public LaunchServices {
public:
    using Arguments = std::vector<std::string>;
    using Answer = std::optional<ToolResult>;

    explicit FakeLaunchServices(VirtualDispatch& dispatch) : m_dispatch(dispatch) { }

    bool isAvailable() const override { return m_isAvailable; }
    std::vector<ApplicationStatus> runningApplications() const override;
    std::vector<AttentionRequest> attentionRequests() const override;
    Answer runTool(const std::string& path, const Arguments&) override;

    // What there is.
    std::vector<ApplicationStatus> statuses;
    std::vector<AttentionRequest> requests;
    std::map<std::string, ListedApplication> applications; ///< by bundle identifier

    // Knobs.
    void setAvailable(bool value) { m_isAvailable = value; }
    /// How long each run takes; nothing else on its queue gets its turn meanwhile.
    void setToolDelay(Duration value) { m_toolDelay = value; }
    /// What a run with this first argument answers, whatever is there.
    void answer(const std::string& verb, Answer answer) { m_answers[verb] = std::move(answer); }
    void answerTruly() { m_answers.clear(); }

    // What the program did.
    std::vector<Arguments> takeRuns() { return std::exchange(m_runs, {}); }

private:
    std::string list() const;
    std::string find() const;
    ToolResult setInfo(const Arguments&);
    void expectOwnQueue() const;

    VirtualDispatch& m_dispatch;
    bool m_isAvailable = false;
    Duration m_toolDelay{};
    std::map<std::string, Answer> m_answers;
    std::vector<Arguments> m_runs;
};

}
