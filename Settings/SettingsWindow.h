#pragma once

#include <memory>
#include <string>
#include <vector>

#include <adwaita.h>

#include "Settings/BarConnection.h"
#include "Settings/PageView.h"
#include "Settings/Rows/RowView.h"
#include "Settings/Toolkit/SignalHandler.h"
#include "Settings/WindowFrame.h"

namespace quorvel::settings {

/// The window with the settings of the bar of this display. While no bar answers, it says so and
/// nothing can be changed. Main thread.
class SettingsWindow {
public:
    explicit SettingsWindow(GtkApplication*);
    SettingsWindow(const SettingsWindow&) = delete;
    SettingsWindow& operator=(const SettingsWindow&) = delete;

    /// Brings it to the front.
    void present();
    /// False once the user has closed it.
    bool isOpen() const { return m_isOpen; }

private:
    struct ShownPage {
        std::string id;
        std::unique_ptr<PageView> view;
    };

    void receive(const SettingsDescription&);
    void receive(const SettingsPresent&);
    void receive(const SettingsRefusal&);
    void lose(WindowFrame::Absence);
    void showPages();
    void replacePages();
    void setRecording(bool);
    void catchUpLater();
    void endUse();

    posix::HostLoop m_loop;
    WindowFrame m_frame;
    RowOutlets m_outlets;
    BarConnection m_bar; ///< before the pages: a row that goes may end its recording
    SettingsDescription m_description; ///< the last
    bool m_isOpen = true;
    bool m_isConnected = false;
    bool m_isBehind = false; ///< a page waits until the user is done with one of its rows
    Subscription m_later; ///< before the pages, as the connection
    std::vector<ShownPage> m_pages;
    xdg::GObjectHandle<GtkWidget> m_focusWhenLost;
    SignalHandler m_focusMoved;
    SignalHandler m_activated;
    SignalHandler m_destroyed;
};

}
