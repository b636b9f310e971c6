#pragma once

#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Core/AppInfo.h"

namespace quorvel {

class AppLauncher;
class PinStore;

enum class AppListSection { pinned, main };

/// One row of the launcher's list.
struct AppListItem {
    struct SectionHeader {
        std::string title;
    };
    struct App {
        AppInfo app;
        AppListSection section = AppListSection::main;
    };
    struct TopSpacer { };
    struct Divider { };

    std::variant<SectionHeader, App, TopSpacer, Divider> content;

    /// Null unless it is a row with an application.
    const App* app() const { return std::get_if<App>(&content); }
    bool isPin() const { return app() && app()->section == AppListSection::pinned; }
    double rowHeight() const; ///< points
    /// Whether one can stand in for the other, pixel by pixel.
    bool looksLike(const AppListItem&) const;
};

/// The pins, which a search leaves out, and below them every application that matches the query.
std::vector<AppListItem> listItems(const AppLauncher&, const PinStore&);

}
