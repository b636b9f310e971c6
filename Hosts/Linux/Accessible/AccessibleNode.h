#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Accessible/AccessibleObject.h"
#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/Linux/Accessible/AtkLibrary.h"
#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/AccessibleTree.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg {

/// What assistive programs see: the application, below it its surfaces, below those their elements.
/// A node keeps no pointer to its element: each question looks it up again, by the path of
/// identifiers, and the node of an element that has gone answers as defunct.
///
/// A node and its AtkObject are made when its parent is asked for its children, and the node lives
/// until its parent finds its element gone. Others may hold the object for longer.
class AccessibleNode {
public:
    /// The properties whose changes are reported.
    struct Description {
        std::string name;
        std::string text;
        std::uint64_t states = 0; ///< a bit for each AtkStateType
        std::optional<AccessibleText> field{};

        bool has(AtkStateType state) const { return states >> state & 1; }
        friend bool operator==(const Description&, const Description&) = default;
    };

    /// The application.
    AccessibleNode(const AtkLibrary&, const AccessibleSurfaces&);
    AccessibleNode(AccessibleNode& parent, std::string id);
    ~AccessibleNode();
    AccessibleNode(const AccessibleNode&) = delete;
    AccessibleNode& operator=(const AccessibleNode&) = delete;

    AtkObject* object() const { return m_object.get(); }
    AccessibleNode* parent() const { return m_parent; }
    const std::vector<std::unique_ptr<AccessibleNode>>& children();
    int indexInParent() const;

    AtkRole role() const;
    Description describe() const;
    /// These stay valid as long as the answer is the same: the bridge keeps one across further
    /// calls.
    const char* name() { return keep(m_name, describe().name); }
    const char* text() { return keep(m_text, describe().text); }
    /// By index; null if there is none.
    const char* actionName(std::size_t index);
    std::size_t actionCount() const;
    bool performAction(std::size_t index);
    bool takeFocus();
    bool isSelected() const { return describe().has(ATK_STATE_SELECTED); }
    std::optional<AccessiblePosition> position() const;
    /// Of a text field; offsets are bytes, places pixels of the X screen.
    std::optional<AccessibleText> field() const { return describe().field; }
    bool setText(std::string_view utf8);
    bool setSelection(std::size_t start, std::size_t end);
    std::optional<Rect> textFrame(std::size_t start, std::size_t end) const;
    std::optional<std::size_t> offsetAt(Point) const;
    /// Pixels of the X screen; absent if it is gone.
    std::optional<Rect> frame() const;
    std::optional<Rect> surfaceFrame() const;

    /// Reports everything that differs from the last report, here and below.
    void announceChanges();

private:
    static const char* keep(std::string& kept, std::string answer);
    bool isApplication() const { return !m_parent; }
    bool isSurface() const { return m_parent && m_parent->isApplication(); }
    const AccessibleSurfaces::Entry* surface() const;
    AccessibleElement* element() const;
    std::vector<std::string> childIDs() const;
    std::uint64_t statesOf(const AccessibleState&) const;
    bool isShowing(const Rect& place) const;

    void announceChildren();
    void removeVanished(const std::vector<std::string>& ids);
    void placeAt(std::size_t index, const std::string& id);
    std::unique_ptr<AccessibleNode> take(std::size_t index);
    void emitChildren(const char* signal, std::size_t index, const AccessibleNode& child);
    bool isInActiveSurface() const;
    void announceDescription();
    void announceStates(const Description& before, const Description& now);
    void announceText(const AccessibleText& before, const AccessibleText& now);
    void announceSelection(const AccessibleNode& child);
    AccessibleKind kindOfThis() const;
    Rect toPixels(const Rect& points) const;

    const AtkLibrary& m_atk;
    const AccessibleSurfaces& m_surfaces;
    AccessibleNode* const m_parent;
    const std::string m_id;
    std::vector<std::unique_ptr<AccessibleNode>> m_children;
    bool m_hasChildren = false; ///< the children have been asked for
    bool m_isAnnouncing = false;
    Description m_told;
    std::string m_name;
    std::string m_text;
    std::vector<std::string> m_actionNames;
    const AccessibleKind m_kind;
    const GObjectHandle<AtkObject> m_object;
};

}
