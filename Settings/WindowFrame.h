#pragma once

#include <string>

#include <adwaita.h>

#include "Hosts/Linux/GHandles.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// The window around the pages: the switch between them, which moves to the bottom where it is
/// narrow, and the places where the user is told something. Main thread.
class WindowFrame {
public:
    explicit WindowFrame(GtkApplication*);
    WindowFrame(const WindowFrame&) = delete;
    WindowFrame& operator=(const WindowFrame&) = delete;

    GtkWindow* window() const { return m_window; }
    AdwViewStack* stack() const { return m_stack; }

    /// Call when the pages have their titles. In a narrow window, whose tabs have no room for each
    /// language's, the one that is seen stands above it.
    void nameThePage();
    /// The bar is there, and with it the pages.
    void showPages();
    enum class Absence { notRunning, silent };
    /// It is not, or it hangs, and the user is told: above the pages, or instead of them as long as
    /// there are none.
    void showAbsence(Absence);
    /// A passing note, which replaces the last.
    void tell(const std::string&);

private:
    GtkWidget* makeHeader();
    GtkWidget* makeNote();
    GtkWidget* makeAbsencePage();
    GtkWidget* makeBody();
    void addKeys();

    // The window is its application's, and the others are the window's.
    GtkWindow* m_window;
    AdwViewStack* m_stack;
    GtkStack* m_body = nullptr;
    AdwToastOverlay* m_toasts = nullptr;
    GtkWidget* m_note = nullptr;
    GtkLabel* m_noteText = nullptr;
    AdwStatusPage* m_absence = nullptr;
    xdg::GObjectHandle<AdwViewSwitcherTitle>
        m_title; ///< the window may let go of it before the stack
    xdg::GObjectHandle<AdwToast> m_toast;
    SignalHandler m_pageTurned;
};

}
