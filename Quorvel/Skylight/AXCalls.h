#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <variant>

#include "Quorvel/Platform/Accessibility.h"

namespace quorvel {

class LateRequests;

/// Accessibility calls to other applications, each bounded by a messaging timeout. One instance per
/// thread.
///
/// A hung application answers every call only when the timeout has expired. While a `Scan` is
/// alive, the first question that a process does not answer is the last one it is asked, so that it
/// costs the caller one timeout per scan and not one per window.
///
/// A request (`setAttribute`, `performAction`) that is answered late has as a rule been understood,
/// so it keeps no other one from being made. Where the caller must not wait, the first late one of
/// a process in a scan sends all that follow to `LateRequests`; they answer `cannotComplete`.
class AXCalls {
public:
    /// Seconds; set on every element that the program queries.
    static constexpr float axMessagingTimeoutSeconds = 0.05F;

    /// Without `late` every request is made at once.
    explicit AXCalls(Accessibility&, LateRequests* late = nullptr);

    class Scan {
    public:
        explicit Scan(AXCalls& calls);
        ~Scan();
        Scan(const Scan&) = delete;
        Scan& operator=(const Scan&) = delete;

    private:
        AXCalls& m_calls;
    };

    /// Emitted when a process did not answer a question in time: at most once per scan, from inside
    /// the call.
    std::function<void(ProcessID)> onTimeOut;

    /// Whether the process has failed to answer a question in this scan.
    bool hasTimedOut(ProcessID pid) const { return m_hungInScan.contains(pid); }

    AXElement application(ProcessID) const;
    AXReply copyAttribute(ProcessID, const AXElement&, std::string_view attribute);
    /// False too if the question was not answered.
    bool isSettable(ProcessID, const AXElement&, std::string_view attribute);
    AXError setAttribute(ProcessID, const AXElement&, std::string_view attribute, const AXValue&);
    AXError performAction(ProcessID, const AXElement&, std::string_view action);
    AXError addNotification(
        ProcessID, AXObserver&, const AXElement&, std::string_view notification);
    /// The elements in "AXWindows", with timeouts set; absent when the list cannot be read.
    std::optional<std::vector<AXElement>> windows(ProcessID);
    /// The one of this number, with its timeout set; absent too if the list cannot be read.
    std::optional<AXElement> window(ProcessID, const AXElement& application, WindowID);
    /// By the private resolver, else from "AXWindowNumber".
    std::optional<WindowID> windowID(ProcessID, const AXElement&);

    template <typename T>
    std::optional<T> read(ProcessID pid, const AXElement& element, std::string_view attribute)
    {
        auto reply = copyAttribute(pid, element, attribute);
        if (!reply.template get<T>())
            return std::nullopt;
        return std::get<T>(std::move(reply.value));
    }

    void setMessagingTimeout(const AXElement&) const;

private:
    /// Asks unless the process has failed to answer an earlier question in this scan.
    template <typename Call> AXError bounded(ProcessID pid, Call&& call)
    {
        if (m_hungInScan.contains(pid))
            return AXError::cannotComplete;
        auto error = std::forward<Call>(call)();
        noteTimeOut(pid, error);
        return error;
    }
    void noteTimeOut(ProcessID, AXError);
    /// Whether a request to the process must not be made now.
    bool mustWait(ProcessID) const;
    /// Leaves it to `LateRequests`, if there are any; the answer to the caller.
    AXError makeLater(ProcessID, Work request);
    /// After a request; returns the error.
    AXError noteLateness(ProcessID, AXError);

    Accessibility& m_accessibility;
    LateRequests* m_late;
    Accessibility::WindowIDResolver m_axGetWindow;
    int m_scanDepth = 0;
    std::set<ProcessID> m_hungInScan;
    std::set<ProcessID> m_lateInScan; ///< with a request
};

}
