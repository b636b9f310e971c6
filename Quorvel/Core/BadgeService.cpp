#include "Quorvel/Core/BadgeService.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace quorvel {

namespace {

constexpr std::size_t kTracedCharacters = 240;

/// Cut between two characters.
std::string shortened(std::string_view text)
{
    std::size_t characters = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool continues = (static_cast<unsigned char>(text[index]) & 0xC0) == 0x80;
        if (!continues && ++characters > kTracedCharacters)
            return std::string{text.substr(0, index)} + "…";
    }
    return std::string{text};
}

/// What a tool printed, as one short line. The text is valid UTF-8.
std::string condensed(std::string_view text)
{
    std::string line;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        if (text.substr(index).starts_with("\r\n"))
            continue;
        if (byte == '\n')
            line += " | ";
        else if (byte == '\t' || byte == '\v' || byte == '\f')
            line += ' ';
        else
            line += byte < 0x20 || byte == 0x7F ? '?' : text[index];
    }
    line.erase(0, line.find_first_not_of(' '));
    line.erase(line.find_last_not_of(' ') + 1);
    return shortened(line);
}

}

BadgeService::BadgeService(Dispatch& dispatch, LaunchServices& launchServices, const Trace& trace)
    : m_dispatch(dispatch)
    , m_launchServices(launchServices)
    , m_trace(trace)
    , m_queue(dispatch.makeSerialQueue("com.quorvel.badges", QualityOfService::utility))
{
}

BadgeService::~BadgeService()
{
    m_firstPoll.cancel();
    m_hintedPoll.cancel();
    // The queue's work makes a work item of the queue: it has to end before the pointer to it goes.
    auto queue = m_queue.get();
    queue->sync([this] { m_timerSource.cancel(); });
}

template <typename Function> void BadgeService::onMain(Function function)
{
    m_dispatch.main().async([owner = m_weak.reference(), function = std::move(function)] {
        if (auto* self = owner.get())
            function(*self);
    });
}

void BadgeService::start()
{
    if (m_isStarted || !m_launchServices.isAvailable())
        return;
    m_isStarted = true;
    m_firstPoll = m_queue->after(firstPollDelay, [this] {
        m_timerSource = m_queue->every(pollInterval, [this] { fetchAndPublish(); }, pollLeeway);
    });
    m_hints = m_launchServices.answersMayHaveChanged.subscribe([this] { pollOnHint(); });
}

void BadgeService::pollOnHint()
{
    if (m_hintedPoll.isPending())
        return;
    const auto now = m_dispatch.now();
    const auto at = std::max(now, m_lastHintedPoll + hintedPollInterval);
    m_lastHintedPoll = at;
    m_hintedPoll = m_queue->after(at - now, [this] { fetchAndPublish(); });
}

void BadgeService::fetchAndPublish()
{
    const auto now = m_dispatch.now();
    const auto records = fetchRecords();
    Poll poll;
    fetchStatuses(poll);
    poll.suppressed = fetchAttention(records, now);
    poll.attention = m_ledger.attentionByBundleID();
    poll.attentionWindows = m_ledger.attentionWindows();
    if (poll == m_published)
        return; // the main thread may sleep on
    m_published = poll;
    onMain([poll = std::move(poll)](BadgeService& self) {
        self.traceSuppressed(poll.suppressed);
        self.m_badgesByBundleID.set(poll.badges);
        self.m_progressByBundleID.set(poll.progress);
        self.m_attentionWindows.set(poll.attentionWindows);
        self.m_attentionByBundleID.set(poll.attention);
    });
}

void BadgeService::fetchStatuses(Poll& poll) const
{
    for (auto& status : m_launchServices.runningApplications()) {
        if (!status.bundleIdentifier)
            continue;
        if (status.label && !status.label->empty())
            poll.badges[*status.bundleIdentifier] = *status.label;
        if (status.progress && std::isfinite(*status.progress))
            poll.progress[*status.bundleIdentifier] = std::clamp(*status.progress, 0.0, 1.0);
    }
}

/// Output is read whatever the exit status: the tool's is no measure of what it printed.
std::vector<AttentionLedger::Suppressed> BadgeService::fetchAttention(
    const std::vector<AppRecord>& records, Instant now)
{
    const auto found = runLSAppInfo({"find", "kLSApplicationDesiresAttentionKey=true"});
    const auto asns = parseFindOutputASNs(found ? found->standardOutput : std::string{});
    std::set<std::string> runningBundleIDs;
    std::set<std::string> raw;
    for (auto& record : records) {
        runningBundleIDs.insert(record.bundleID);
        if (asns.contains(record.asn))
            raw.insert(record.bundleID);
    }
    return m_ledger.update(raw, runningBundleIDs, m_launchServices.attentionRequests(), now);
}

std::vector<AppRecord> BadgeService::fetchRecords() const
{
    const auto listed = runLSAppInfo({"list"});
    return listed ? parseListOutput(listed->standardOutput) : std::vector<AppRecord>{};
}

std::optional<BadgeService::LSAppInfoResult> BadgeService::runLSAppInfo(
    std::vector<std::string> arguments) const
{
    auto ran = m_launchServices.runTool(std::string{lsappinfoPath}, arguments);
    if (!ran)
        return std::nullopt;
    LSAppInfoResult result{std::move(arguments), ran->exitStatus,
        decodedAsUTF8(std::move(ran->standardOutput)), decodedAsUTF8(std::move(ran->standardError)),
        std::nullopt};
    result.errCode = parseLSAppInfoErrorCode(result.standardError);
    return result;
}

void BadgeService::publishAttention()
{
    m_published.reset();
    onMain([attention = m_ledger.attentionByBundleID(), windows = m_ledger.attentionWindows()](
               BadgeService& self) {
        self.m_attentionWindows.set(windows);
        self.m_attentionByBundleID.set(attention);
    });
}

void BadgeService::clearAttention(const std::string& bundleID, std::set<WindowID> windowsWithChip)
{
    if (!m_launchServices.isAvailable())
        return;
    m_queue->async([this, bundleID, windowsWithChip = std::move(windowsWithChip)] {
        clearAttentionOnQueue(bundleID, windowsWithChip);
    });
}

void BadgeService::clearAttention(WindowID id)
{
    if (!m_launchServices.isAvailable())
        return;
    m_queue->async([this, id] {
        m_ledger.acknowledge(id);
        publishAttention();
    });
}

void BadgeService::clearAttentionOnQueue(
    const std::string& bundleID, const std::set<WindowID>& windowsWithChip)
{
    bool namesWindows = false;
    for (auto& request : m_launchServices.attentionRequests()) {
        if (request.bundleIdentifier != bundleID)
            continue;
        namesWindows = true;
        if (!windowsWithChip.contains(request.window))
            m_ledger.acknowledge(request.window);
    }
    if (namesWindows)
        return publishAttention();
    m_ledger.acknowledge(bundleID, m_dispatch.now());
    m_published.reset();
    // First, so that the chip does not wait for the tool.
    onMain([bundleID](BadgeService& self) {
        auto attention = self.m_attentionByBundleID.value();
        if (attention.erase(bundleID) > 0)
            self.m_attentionByBundleID.set(std::move(attention));
    });
    clearWantsAttentionViaLSAppInfo(bundleID);
}

void BadgeService::clearWantsAttentionViaLSAppInfo(const std::string& bundleID)
{
    const auto records = fetchRecords();
    const auto record = std::ranges::find(records, bundleID, &AppRecord::bundleID);
    if (record == records.end())
        return;
    if (!setWantsNoAttention(fmt::format("pid:{}", raw(record->pid))))
        setWantsNoAttention(bundleID);
}

/// False if another way of naming the application may work better.
bool BadgeService::setWantsNoAttention(const std::string& application)
{
    const auto result
        = runLSAppInfo({"setinfo", "-app", application, "kLSApplicationDesiresAttentionKey=false"});
    if (!result)
        return true;
    onMain([result = *result](BadgeService& self) { self.traceSetInfo(result); });
    return result->exitStatus == 0 && result->errCode.value_or(0) == 0;
}

void BadgeService::traceSuppressed(const std::vector<AttentionLedger::Suppressed>& all) const
{
    if (all.empty() || !m_trace.isOn())
        return;
    std::string summary;
    for (auto& [bundleID, age] : all) {
        summary += fmt::format("{}{}:{:.2f}s", summary.empty() ? "" : ", ", condensed(bundleID),
            std::chrono::duration<double>(age).count());
    }
    m_trace.line("badges suppressed={}", summary);
}

void BadgeService::traceSetInfo(const LSAppInfoResult& result) const
{
    if (!m_trace.isOn())
        return;
    m_trace.line("badges setinfo app={} status={} err={} stdout={} stderr={}",
        condensed(result.arguments.at(2)), result.exitStatus,
        result.errCode ? std::to_string(*result.errCode) : "nil", condensed(result.standardOutput),
        condensed(result.standardError));
}

}
