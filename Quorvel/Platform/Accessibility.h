#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// The platform's result codes; a host may pass others through unchanged.
enum class AXError : std::int32_t {
    success = 0,
    failure = -25200,
    illegalArgument = -25201,
    invalidElement = -25202, ///< the element is gone
    invalidObserver = -25203,
    cannotComplete = -25204, ///< timed out, or the application is busy or still starting
    attributeUnsupported = -25205,
    actionUnsupported = -25206,
    notificationUnsupported = -25207,
    notImplemented = -25208,
    notificationAlreadyRegistered = -25209,
    notificationNotRegistered = -25210,
    apiDisabled = -25211, ///< the user has not granted accessibility
    noValue = -25212,
};

/// What a host attaches to an element besides its token.
struct AXNative {
    virtual ~AXNative() = default;
    virtual bool equals(const AXNative&) const = 0;
};

/// An application or a window in the accessibility tree: a cheap value that may be held after the
/// thing itself has gone. Equal elements stand for the same thing.
struct AXElement {
    std::uint64_t token = 0; ///< the host's; equal elements have equal tokens
    std::shared_ptr<const AXNative> native;

    friend bool operator==(const AXElement& a, const AXElement& b)
    {
        return a.token == b.token
            && (a.native == b.native || (a.native && b.native && a.native->equals(*b.native)));
    }
};

/// `monostate` stands for values of a type that the program never asks for.
using AXValue = std::variant<std::monostate, bool, double, std::string, Point, Size, AXElement,
    std::vector<AXElement>>;

struct AXReply {
    AXError error = AXError::failure;
    AXValue value;

    /// The value if the call succeeded with this type, else null.
    template <typename T> const T* get() const
    {
        return error == AXError::success ? std::get_if<T>(&value) : nullptr;
    }
};

namespace ax {
inline constexpr std::string_view windows = "AXWindows";
inline constexpr std::string_view windowNumber = "AXWindowNumber";
inline constexpr std::string_view focusedWindow = "AXFocusedWindow";
inline constexpr std::string_view mainWindow = "AXMainWindow";
inline constexpr std::string_view frontmost = "AXFrontmost";
inline constexpr std::string_view title = "AXTitle";
inline constexpr std::string_view role = "AXRole";
inline constexpr std::string_view subrole = "AXSubrole";
inline constexpr std::string_view modal = "AXModal";
inline constexpr std::string_view minimized = "AXMinimized";
inline constexpr std::string_view main = "AXMain";
inline constexpr std::string_view focused = "AXFocused";
inline constexpr std::string_view position = "AXPosition"; ///< global, top-left origin
inline constexpr std::string_view size = "AXSize";
inline constexpr std::string_view closeButton = "AXCloseButton";
inline constexpr std::string_view zoomButton = "AXZoomButton";
inline constexpr std::string_view enabled = "AXEnabled";
inline constexpr std::string_view fullScreen = "AXFullScreen"; ///< undocumented, a bool
// States that the Mac does not know, bools of windows: it answers `attributeUnsupported`.
inline constexpr std::string_view maximized = "QuorvelMaximized";
inline constexpr std::string_view keptAbove = "QuorvelKeptAbove";
inline constexpr std::string_view onEverySpace = "QuorvelOnEverySpace";

inline constexpr std::string_view raiseAction = "AXRaise";
inline constexpr std::string_view pressAction = "AXPress";
/// Of a zoom button that enters full screen when it is pressed.
inline constexpr std::string_view zoomWindowAction = "AXZoomWindow";

inline constexpr std::string_view windowRole = "AXWindow";
inline constexpr std::string_view standardWindowSubrole = "AXStandardWindow";
inline constexpr std::string_view fullScreenButtonSubrole = "AXFullScreenButton";

inline constexpr std::string_view windowCreated = "AXWindowCreated";
inline constexpr std::string_view focusedWindowChanged = "AXFocusedWindowChanged";
inline constexpr std::string_view titleChanged = "AXTitleChanged";
inline constexpr std::string_view windowResized = "AXWindowResized";
inline constexpr std::string_view windowMoved = "AXWindowMoved";
inline constexpr std::string_view windowMiniaturized = "AXWindowMiniaturized";
inline constexpr std::string_view windowDeminiaturized = "AXWindowDeminiaturized";
inline constexpr std::string_view elementDestroyed = "AXUIElementDestroyed";
}

/// The registrations for one process. Created and used on its run loop's thread, and destroyed
/// there or, once that thread has ended, anywhere. Destroying it ends every registration; no
/// callback follows.
class AXObserver {
public:
    virtual ~AXObserver() = default;

    virtual AXError addNotification(const AXElement&, std::string_view notification) = 0;
    virtual AXError removeNotification(const AXElement&, std::string_view notification) = 0;
};

/// The accessibility trees of other applications. Any thread may call. Each call may wait for the
/// application, at most for the element's messaging timeout, and then answers `cannotComplete`.
class Accessibility {
public:
    using WindowIDResolver = std::function<AXError(const AXElement&, WindowID&)>;
    using Callback = std::function<void(const AXElement&, std::string_view notification)>;

    virtual ~Accessibility() = default;

    /// Whether the user allows this program to use accessibility; always current.
    virtual bool isTrusted() const = 0;
    /// Shows the system's own question, where there is one.
    virtual void promptForTrust() = 0;

    virtual AXElement application(ProcessID) const = 0;
    /// Applies to this very element value and its copies.
    virtual void setMessagingTimeout(const AXElement&, float seconds) = 0;
    virtual AXReply copyAttribute(const AXElement&, std::string_view attribute) = 0;
    /// Answers a bool.
    virtual AXReply isAttributeSettable(const AXElement&, std::string_view attribute) = 0;
    virtual AXError setAttribute(const AXElement&, std::string_view attribute, const AXValue&) = 0;
    virtual AXError performAction(const AXElement&, std::string_view action) = 0;

    /// The private call that maps an element to its window number; an empty function where the
    /// system lacks it.
    virtual WindowIDResolver windowIDResolver() const = 0;

    /// Creates an observer whose callback runs on the thread's run loop. Call on that thread only.
    virtual std::pair<AXError, std::unique_ptr<AXObserver>> createObserver(
        ProcessID, RunLoopThread&, Callback)
        = 0;
};

}
