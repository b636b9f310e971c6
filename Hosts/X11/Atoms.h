#pragma once

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

// One line per atom: the member's name, then the server's.
#define QUORVEL_ATOMS(X)                                                                           \
    X(quorvelS0, "_QUORVEL_S0")                                                                    \
    X(quorvelSession, "_QUORVEL_SESSION")                                                          \
    X(quorvelFaded, "_QUORVEL_FADED")                                                              \
    X(quorvelRaised, "_QUORVEL_RAISED")                                                            \
    X(utf8String, "UTF8_STRING")                                                                   \
    X(compoundText, "COMPOUND_TEXT")                                                               \
    X(wmName, "WM_NAME")                                                                           \
    X(wmClass, "WM_CLASS")                                                                         \
    X(wmWindowRole, "WM_WINDOW_ROLE")                                                              \
    X(wmProtocols, "WM_PROTOCOLS")                                                                 \
    X(wmDeleteWindow, "WM_DELETE_WINDOW")                                                          \
    X(wmChangeState, "WM_CHANGE_STATE")                                                            \
    X(wmHints, "WM_HINTS")                                                                         \
    X(wmTransientFor, "WM_TRANSIENT_FOR")                                                          \
    X(wmClientMachine, "WM_CLIENT_MACHINE")                                                        \
    X(wmS0, "WM_S0")                                                                               \
    X(resourceManager, "RESOURCE_MANAGER")                                                         \
    X(netSupported, "_NET_SUPPORTED")                                                              \
    X(netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK")                                            \
    X(netClientList, "_NET_CLIENT_LIST")                                                           \
    X(netClientListStacking, "_NET_CLIENT_LIST_STACKING")                                          \
    X(netActiveWindow, "_NET_ACTIVE_WINDOW")                                                       \
    X(netCloseWindow, "_NET_CLOSE_WINDOW")                                                         \
    X(netCurrentDesktop, "_NET_CURRENT_DESKTOP")                                                   \
    X(netNumberOfDesktops, "_NET_NUMBER_OF_DESKTOPS")                                              \
    X(netDesktopNames, "_NET_DESKTOP_NAMES")                                                       \
    X(netShowingDesktop, "_NET_SHOWING_DESKTOP")                                                   \
    X(netMoveResizeWindow, "_NET_MOVERESIZE_WINDOW")                                               \
    X(netRestackWindow, "_NET_RESTACK_WINDOW")                                                     \
    X(netFrameExtents, "_NET_FRAME_EXTENTS")                                                       \
    X(gtkFrameExtents, "_GTK_FRAME_EXTENTS")                                                       \
    X(gtkApplicationId, "_GTK_APPLICATION_ID")                                                     \
    X(netWmName, "_NET_WM_NAME")                                                                   \
    X(netWmPing, "_NET_WM_PING")                                                                   \
    X(netWmUserTime, "_NET_WM_USER_TIME")                                                          \
    X(netWmPid, "_NET_WM_PID")                                                                     \
    X(netWmDesktop, "_NET_WM_DESKTOP")                                                             \
    X(netWmIcon, "_NET_WM_ICON")                                                                   \
    X(netWmWindowOpacity, "_NET_WM_WINDOW_OPACITY")                                                \
    X(netWmWindowType, "_NET_WM_WINDOW_TYPE")                                                      \
    X(netWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL")                                         \
    X(netWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG")                                         \
    X(netWmWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK")                                             \
    X(netWmWindowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP")                                       \
    X(netWmWindowTypeUtility, "_NET_WM_WINDOW_TYPE_UTILITY")                                       \
    X(netWmWindowTypeSplash, "_NET_WM_WINDOW_TYPE_SPLASH")                                         \
    X(netWmWindowTypeToolbar, "_NET_WM_WINDOW_TYPE_TOOLBAR")                                       \
    X(netWmWindowTypeMenu, "_NET_WM_WINDOW_TYPE_MENU")                                             \
    X(netWmWindowTypePopupMenu, "_NET_WM_WINDOW_TYPE_POPUP_MENU")                                  \
    X(netWmWindowTypeDropdownMenu, "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU")                            \
    X(netWmWindowTypeNotification, "_NET_WM_WINDOW_TYPE_NOTIFICATION")                             \
    X(netWmWindowTypeTooltip, "_NET_WM_WINDOW_TYPE_TOOLTIP")                                       \
    X(netWmState, "_NET_WM_STATE")                                                                 \
    X(netWmStateHidden, "_NET_WM_STATE_HIDDEN")                                                    \
    X(netWmStateShaded, "_NET_WM_STATE_SHADED")                                                    \
    X(netWmStateModal, "_NET_WM_STATE_MODAL")                                                      \
    X(netWmStateSticky, "_NET_WM_STATE_STICKY")                                                    \
    X(netWmStateBelow, "_NET_WM_STATE_BELOW")                                                      \
    X(netWmStateFullscreen, "_NET_WM_STATE_FULLSCREEN")                                            \
    X(netWmStateMaximizedVert, "_NET_WM_STATE_MAXIMIZED_VERT")                                     \
    X(netWmStateMaximizedHorz, "_NET_WM_STATE_MAXIMIZED_HORZ")                                     \
    X(netWmStateAbove, "_NET_WM_STATE_ABOVE")                                                      \
    X(netWmAllowedActions, "_NET_WM_ALLOWED_ACTIONS")                                              \
    X(netWmActionMaximizeHorz, "_NET_WM_ACTION_MAXIMIZE_HORZ")                                     \
    X(netWmActionMaximizeVert, "_NET_WM_ACTION_MAXIMIZE_VERT")                                     \
    X(netWmActionFullscreen, "_NET_WM_ACTION_FULLSCREEN")                                          \
    X(netWmActionAbove, "_NET_WM_ACTION_ABOVE")                                                    \
    X(netWmActionChangeDesktop, "_NET_WM_ACTION_CHANGE_DESKTOP")                                   \
    X(netWmStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR")                                         \
    X(netWmStateSkipPager, "_NET_WM_STATE_SKIP_PAGER")                                             \
    X(netWmStateDemandsAttention, "_NET_WM_STATE_DEMANDS_ATTENTION")                               \
    X(netWmStrut, "_NET_WM_STRUT")                                                                 \
    X(netWmStrutPartial, "_NET_WM_STRUT_PARTIAL")                                                  \
    X(comptonShadow, "_COMPTON_SHADOW")                                                            \
    X(kdeBlurBehind, "_KDE_NET_WM_BLUR_BEHIND_REGION")                                             \
    X(xsettings, "_XSETTINGS_SETTINGS")                                                            \
    X(xsettingsS0, "_XSETTINGS_S0")                                                                \
    X(manager, "MANAGER")                                                                          \
    X(netWmCmS0, "_NET_WM_CM_S0")                                                                  \
    X(xdndAware, "XdndAware")                                                                      \
    X(xdndTypeList, "XdndTypeList")                                                                \
    X(xdndSelection, "XdndSelection")                                                              \
    X(xdndEnter, "XdndEnter")                                                                      \
    X(xdndPosition, "XdndPosition")                                                                \
    X(xdndStatus, "XdndStatus")                                                                    \
    X(xdndLeave, "XdndLeave")                                                                      \
    X(xdndDrop, "XdndDrop")                                                                        \
    X(xdndFinished, "XdndFinished")                                                                \
    X(xdndActionCopy, "XdndActionCopy")                                                            \
    X(textUriList, "text/uri-list")                                                                \
    X(clipboard, "CLIPBOARD")                                                                      \
    X(targets, "TARGETS")                                                                          \
    X(timestamp, "TIMESTAMP")                                                                      \
    X(multiple, "MULTIPLE")                                                                        \
    X(atomPair, "ATOM_PAIR")                                                                       \
    X(incr, "INCR")                                                                                \
    X(text, "TEXT")                                                                                \
    X(textPlainUtf8, "text/plain;charset=utf-8")                                                   \
    X(quorvelText, "QUORVEL_TEXT")

/// The server's numbers of the names this program uses, interned once in one round trip.
struct Atoms {
#define QUORVEL_DECLARE_ATOM(member, name) xcb_atom_t member = XCB_ATOM_NONE;
    QUORVEL_ATOMS(QUORVEL_DECLARE_ATOM)
#undef QUORVEL_DECLARE_ATOM

    static Atoms intern(xcb_connection_t*);
};

}
