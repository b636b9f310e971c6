#pragma once

#include <functional>
#include <memory>
#include <string>

#include <adwaita.h>

#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel::settings {

/// What a row asks of its window. It outlives the row.
struct RowOutlets {
    std::function<void(const SettingsChange&)> change;
    std::function<void(bool isRecording)> setRecording;
    std::function<void(const std::string&)> tell; ///< the user, in a passing note
};

/// One row of the window, made for a description of one kind and then kept in step with it. It
/// never shows what the user wants before the bar has said so. Main thread.
class RowView {
public:
    static std::unique_ptr<RowView> make(const SettingsRow&, const RowOutlets&);

    RowView(const RowView&) = delete;
    RowView& operator=(const RowView&) = delete;
    virtual ~RowView() = default;

    GtkWidget* widget() const { return m_widget.get(); }
    /// Of the same identifier and kind as the first. What is equal already is not touched.
    virtual void show(const SettingsRow&) = 0;
    /// While it is, the row is not to be replaced.
    virtual bool isInUse() const { return false; }
    virtual void endUse() { }

protected:
    explicit RowView(GtkWidget* widget) : m_widget(GTK_WIDGET(g_object_ref_sink(widget))) { }

private:
    xdg::GObjectHandle<GtkWidget> m_widget;
};

}
