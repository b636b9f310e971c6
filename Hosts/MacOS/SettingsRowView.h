#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/SettingsWindow.h"

namespace quorvel {

/// What the user does in a row; it is applied, and the row shows then what holds.
using OnSettingsChange = std::function<void(const SettingsChange&)>;

/// The control of one row. Main thread.
class SettingsRowView {
public:
    virtual ~SettingsRowView() = default;

    virtual NSView* view() const = 0;
    /// The row must be of the kind that this was made for.
    virtual void show(const SettingsRow&) = 0;

    /// The source outlives the view.
    static std::unique_ptr<SettingsRowView> make(
        const SettingsRow&, SettingsSource&, OnSettingsChange);
};

/// Empty for text that is not valid UTF-8.
NSString* shownText(const std::string&);

/// The control of a shortcut, and of a list.
std::unique_ptr<SettingsRowView> makeShortcutRow(SettingsSource&, OnSettingsChange);
std::unique_ptr<SettingsRowView> makeListRow(OnSettingsChange);

}

/// Calls a block when a control acts.
@interface QVAction : NSObject
+ (instancetype)actionOf:(NSControl*)control handler:(void (^)(void))handler;
@end
