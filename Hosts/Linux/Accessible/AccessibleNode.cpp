#include "Hosts/Linux/Accessible/AccessibleNode.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

#include "Hosts/Linux/Accessible/AccessibleCharacters.h"
#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {

namespace {

constexpr std::uint64_t bit(AtkStateType state)
{
    return std::uint64_t{1} << state;
}

AtkRole toSystem(AccessibleRole role)
{
    switch (role) {
    case AccessibleRole::button:
    case AccessibleRole::menuButton:
        return ATK_ROLE_PUSH_BUTTON;
    case AccessibleRole::toggleButton:
        return ATK_ROLE_TOGGLE_BUTTON;
    case AccessibleRole::menu:
        return ATK_ROLE_MENU;
    case AccessibleRole::menuItem:
        return ATK_ROLE_MENU_ITEM;
    case AccessibleRole::checkMenuItem:
        return ATK_ROLE_CHECK_MENU_ITEM;
    case AccessibleRole::radioMenuItem:
        return ATK_ROLE_RADIO_MENU_ITEM;
    case AccessibleRole::separator:
        return ATK_ROLE_SEPARATOR;
    case AccessibleRole::heading:
        return ATK_ROLE_HEADING;
    case AccessibleRole::label:
        return ATK_ROLE_LABEL;
    case AccessibleRole::textField:
        return ATK_ROLE_ENTRY;
    case AccessibleRole::list:
        return ATK_ROLE_LIST;
    case AccessibleRole::listItem:
        return ATK_ROLE_LIST_ITEM;
    case AccessibleRole::panel:
    case AccessibleRole::window:
    case AccessibleRole::group:
    case AccessibleRole::popup:
        break;
    }
    return ATK_ROLE_PANEL;
}

std::uint64_t statesOfRole(const AccessibleState& state)
{
    switch (state.role) {
    case AccessibleRole::menuButton:
        return bit(ATK_STATE_HAS_POPUP);
    case AccessibleRole::toggleButton:
        return bit(ATK_STATE_CHECKABLE) | (state.isSelected ? bit(ATK_STATE_CHECKED) : 0);
    case AccessibleRole::checkMenuItem:
    case AccessibleRole::radioMenuItem:
        return bit(ATK_STATE_CHECKABLE) | (state.isChecked ? bit(ATK_STATE_CHECKED) : 0);
    case AccessibleRole::textField:
        return bit(ATK_STATE_EDITABLE) | bit(ATK_STATE_SINGLE_LINE)
            | bit(ATK_STATE_SELECTABLE_TEXT);
    default:
        return state.opensMenu ? bit(ATK_STATE_HAS_POPUP) : 0;
    }
}

bool hasKeyFocus(AccessibleElement& element)
{
    return element.accessibleState().hasKeyFocus
        || std::ranges::any_of(
            element.accessibleChildren(), [](auto* child) { return hasKeyFocus(*child); });
}

bool hasFocusOrChoice(AccessibleElement& element)
{
    const auto state = element.accessibleState();
    return state.hasKeyFocus || state.isSelected
        || std::ranges::any_of(
            element.accessibleChildren(), [](auto* child) { return hasFocusOrChoice(*child); });
}

}

AccessibleNode::AccessibleNode(const AtkLibrary& atk, const AccessibleSurfaces& surfaces)
    : m_atk(atk)
    , m_surfaces(surfaces)
    , m_parent(nullptr)
    , m_kind(kindOfThis())
    , m_object(makeAccessibleObject(atk, m_kind, *this))
{
    m_told = describe();
}

AccessibleNode::AccessibleNode(AccessibleNode& parent, std::string id)
    : m_atk(parent.m_atk)
    , m_surfaces(parent.m_surfaces)
    , m_parent(&parent)
    , m_id(std::move(id))
    , m_kind(kindOfThis())
    , m_object(makeAccessibleObject(m_atk, m_kind, *this))
{
    m_told = describe();
    // Where the keyboard is, and what is chosen, is told of a new element too.
    m_told.states &= ~(bit(ATK_STATE_ACTIVE) | bit(ATK_STATE_FOCUSED) | bit(ATK_STATE_SELECTED));
}

AccessibleNode::~AccessibleNode()
{
    m_children.clear();
    detachAccessibleObject(object());
    m_atk.notifyStateChange(object(), ATK_STATE_DEFUNCT, true);
}

AccessibleKind AccessibleNode::kindOfThis() const
{
    if (isApplication())
        return AccessibleKind::application;
    if (isSurface())
        return AccessibleKind::surface;
    auto* element_ = element();
    const auto state = element_ ? element_->accessibleState() : AccessibleState{};
    if (state.text)
        return AccessibleKind::textField;
    return state.role == AccessibleRole::list ? AccessibleKind::list : AccessibleKind::element;
}

// MARK: Looking it up

const AccessibleSurfaces::Entry* AccessibleNode::surface() const
{
    if (isApplication())
        return nullptr;
    if (!isSurface())
        return m_parent->surface();
    auto& entries = m_surfaces.entries();
    const auto found
        = std::ranges::find(entries, m_id, [](auto& entry) { return std::to_string(entry.id); });
    return found == entries.end() ? nullptr : &*found;
}

AccessibleElement* AccessibleNode::element() const
{
    if (isApplication())
        return nullptr;
    if (isSurface()) {
        auto* entry = surface();
        return entry ? entry->client->accessibleRoot() : nullptr;
    }
    auto* above = m_parent->element();
    if (!above)
        return nullptr;
    const auto elements = above->accessibleChildren();
    const auto isThis = [this](auto* element) { return element->accessibleID() == m_id; };
    const auto place = static_cast<std::size_t>(indexInParent());
    if (place < elements.size() && isThis(elements[place])) // as nearly always
        return elements[place];
    const auto found = std::ranges::find_if(elements, isThis);
    return found == elements.end() ? nullptr : *found;
}

std::vector<std::string> AccessibleNode::childIDs() const
{
    std::vector<std::string> ids;
    if (isApplication()) {
        for (auto& entry : m_surfaces.entries()) {
            // The bars of other desktops are on no screen.
            if (entry.surface->isVisible() && entry.client->accessibleRoot())
                ids.push_back(std::to_string(entry.id));
        }
        return ids;
    }
    auto* element_ = element();
    if (!element_)
        return ids;
    std::unordered_set<std::string> seen;
    for (auto* child : element_->accessibleChildren()) {
        auto id = child->accessibleID();
        if (seen.insert(id).second)
            ids.push_back(std::move(id));
    }
    return ids;
}

const std::vector<std::unique_ptr<AccessibleNode>>& AccessibleNode::children()
{
    if (std::exchange(m_hasChildren, true)) {
        announceChildren();
    } else {
        for (auto& id : childIDs())
            m_children.push_back(std::make_unique<AccessibleNode>(*this, std::move(id)));
    }
    return m_children;
}

int AccessibleNode::indexInParent() const
{
    if (!m_parent)
        return -1;
    auto& siblings = m_parent->m_children;
    const auto found = std::ranges::find(siblings, this, [](auto& node) { return node.get(); });
    return found == siblings.end() ? -1 : static_cast<int>(found - siblings.begin());
}

// MARK: What it says

AtkRole AccessibleNode::role() const
{
    if (isApplication())
        return ATK_ROLE_APPLICATION;
    auto* element_ = element();
    if (!element_)
        return ATK_ROLE_INVALID;
    const auto role = element_->accessibleState().role;
    if (!isSurface())
        return toSystem(role);
    // Readers look for windows below the application. Most of ours have neither title nor border.
    return role == AccessibleRole::window ? ATK_ROLE_FRAME : ATK_ROLE_WINDOW;
}

const char* AccessibleNode::keep(std::string& kept, std::string answer)
{
    if (kept != answer)
        kept = std::move(answer);
    return kept.c_str();
}

AccessibleNode::Description AccessibleNode::describe() const
{
    constexpr auto usable = bit(ATK_STATE_ENABLED) | bit(ATK_STATE_SENSITIVE);
    if (isApplication())
        return {"Quorvel", {}, usable | bit(ATK_STATE_VISIBLE) | bit(ATK_STATE_SHOWING)};
    auto* element_ = element();
    if (!element_)
        return {{}, {}, bit(ATK_STATE_DEFUNCT)};
    const auto state = element_->accessibleState();
    Description description{validUtf8(state.name), // the bus cuts off whoever sends other text
        {}, (state.isEnabled ? usable : 0) | statesOf(state)};
    description.field = state.text;
    if (state.progress)
        description.text = std::to_string(std::lround(*state.progress * 100)) + " %";
    return description;
}

std::uint64_t AccessibleNode::statesOf(const AccessibleState& state) const
{
    auto states = statesOfRole(state);
    const auto place = frame();
    if (place && !place->isEmpty())
        states |= bit(ATK_STATE_VISIBLE) | (isShowing(*place) ? bit(ATK_STATE_SHOWING) : 0);
    if (isSurface())
        return states | (hasKeyFocus(*element()) ? bit(ATK_STATE_ACTIVE) : 0);
    const bool isRead = state.role == AccessibleRole::heading || state.role == AccessibleRole::label
        || state.role == AccessibleRole::separator;
    if (!isRead)
        states |= bit(ATK_STATE_FOCUSABLE) | bit(ATK_STATE_SELECTABLE);
    if (state.hasKeyFocus)
        states |= bit(ATK_STATE_FOCUSED);
    if (state.isSelected)
        states |= bit(ATK_STATE_SELECTED);
    return states;
}

bool AccessibleNode::isShowing(const Rect& place) const
{
    auto* entry = surface();
    return entry->surface->isVisible() && place.intersects(entry->surface->framePixels());
}

std::optional<Rect> AccessibleNode::surfaceFrame() const
{
    auto* entry = surface();
    return entry ? std::optional{entry->surface->framePixels()} : std::nullopt;
}

std::optional<Rect> AccessibleNode::frame() const
{
    const auto surface_ = surfaceFrame();
    if (!surface_ || isSurface())
        return surface_;
    auto* element_ = element();
    if (!element_)
        return std::nullopt;
    return toPixels(element_->accessibleFrame());
}

Rect AccessibleNode::toPixels(const Rect& points) const
{
    const auto& surface_ = *surface()->surface;
    const auto frame = surface_.framePixels();
    const double scale = surface_.scale();
    return {frame.x + points.x * scale, frame.y + points.y * scale, points.width * scale,
        points.height * scale};
}

std::optional<AccessiblePosition> AccessibleNode::position() const
{
    auto* element_ = element();
    return element_ ? element_->accessibleState().position : std::nullopt;
}

// MARK: What it does

std::size_t AccessibleNode::actionCount() const
{
    auto* element_ = element();
    return element_ ? element_->accessibleState().actions.size() : 0;
}

const char* AccessibleNode::actionName(std::size_t index)
{
    auto* element_ = element();
    const auto actions
        = element_ ? element_->accessibleState().actions : std::vector<std::string>{};
    if (index >= actions.size())
        return nullptr;
    m_actionNames.resize(std::max(m_actionNames.size(), actions.size()));
    return keep(m_actionNames[index], validUtf8(actions[index]));
}

bool AccessibleNode::performAction(std::size_t index)
{
    auto* element_ = element();
    return element_ && index < element_->accessibleState().actions.size()
        && element_->performAccessibleAction(index);
}

bool AccessibleNode::takeFocus()
{
    auto* element_ = element();
    return element_ && element_->takeAccessibleFocus();
}

bool AccessibleNode::setText(std::string_view utf8)
{
    auto* element_ = element();
    return element_ && element_->setAccessibleText(utf8);
}

bool AccessibleNode::setSelection(std::size_t start, std::size_t end)
{
    auto* element_ = element();
    return element_ && element_->setAccessibleSelection(start, end);
}

std::optional<Rect> AccessibleNode::textFrame(std::size_t start, std::size_t end) const
{
    auto* element_ = element();
    return element_ ? std::optional{toPixels(element_->accessibleTextFrame(start, end))}
                    : std::nullopt;
}

std::optional<std::size_t> AccessibleNode::offsetAt(Point pixels) const
{
    auto* element_ = element();
    if (!element_)
        return std::nullopt;
    const auto& surface_ = *surface()->surface;
    const auto frame = surface_.framePixels();
    const double scale = surface_.scale();
    return element_->accessibleOffsetAt(
        {(pixels.x - frame.x) / scale, (pixels.y - frame.y) / scale});
}

// MARK: What has changed

void AccessibleNode::announceChanges()
{
    announceDescription();
    // Nobody can ask for what the keyboard is on, or what it chooses, before it has been told.
    if (auto* element_ = element();
        element_ && !m_hasChildren && isInActiveSurface() && hasFocusOrChoice(*element_))
        children();
    announceChildren();
    for (std::size_t index = 0; index < m_children.size(); ++index)
        m_children[index]->announceChanges();
}

bool AccessibleNode::isInActiveSurface() const
{
    auto* node = this;
    while (node && !node->isSurface())
        node = node->m_parent;
    return node && node->m_told.has(ATK_STATE_ACTIVE);
}

void AccessibleNode::announceDescription()
{
    const auto now = describe();
    const auto before = std::exchange(m_told, now);
    if (now.name != before.name)
        g_object_notify(G_OBJECT(object()), "accessible-name");
    if (now.text != before.text)
        g_object_notify(G_OBJECT(object()), "accessible-description");
    announceStates(before, now);
    if (m_kind == AccessibleKind::textField && before.field && now.field)
        announceText(*before.field, *now.field);
}

void AccessibleNode::announceStates(const Description& before, const Description& now)
{
    for (int index = 0; index < ATK_STATE_LAST_DEFINED; ++index) {
        const auto state = static_cast<AtkStateType>(index);
        if (now.has(state) != before.has(state))
            m_atk.notifyStateChange(object(), state, now.has(state));
    }
    if (m_parent && now.has(ATK_STATE_SELECTED) && !before.has(ATK_STATE_SELECTED))
        m_parent->announceSelection(*this);
    // Readers follow the focus in the active window only.
    if (isSurface() && now.has(ATK_STATE_ACTIVE) != before.has(ATK_STATE_ACTIVE))
        g_signal_emit_by_name(object(), now.has(ATK_STATE_ACTIVE) ? "activate" : "deactivate");
}

void AccessibleNode::announceText(const AccessibleText& before, const AccessibleText& now)
{
    const AccessibleCharacters old{before.text};
    const AccessibleCharacters text{now.text};
    const auto [start, removedEnd] = old.differenceTo(text);
    const int insertedEnd = text.count() - (old.count() - removedEnd);
    if (start < removedEnd)
        g_signal_emit_by_name(object(), "text-remove", start, removedEnd - start,
            old.slice(start, removedEnd).c_str());
    if (start < insertedEnd)
        g_signal_emit_by_name(object(), "text-insert", start, insertedEnd - start,
            text.slice(start, insertedEnd).c_str());
    if (before.caret != now.caret)
        g_signal_emit_by_name(object(), "text-caret-moved", text.at(now.caret));
    if (before.selectionStart != now.selectionStart || before.selectionEnd != now.selectionEnd)
        g_signal_emit_by_name(object(), "text-selection-changed");
}

/// While the keyboard stays in a field, this is how a reader hears of the row that is chosen.
void AccessibleNode::announceSelection(const AccessibleNode& child)
{
    if (m_kind != AccessibleKind::list)
        return;
    g_signal_emit_by_name(object(), "selection-changed");
    g_signal_emit_by_name(object(), "active-descendant-changed", child.object());
}

/// Whoever hears of one change may ask for the children before the next one is told.
void AccessibleNode::announceChildren()
{
    if (!m_hasChildren || std::exchange(m_isAnnouncing, true))
        return;
    const auto ids = childIDs();
    removeVanished(ids);
    for (std::size_t index = 0; index < ids.size(); ++index)
        placeAt(index, ids[index]);
    m_isAnnouncing = false;
}

void AccessibleNode::removeVanished(const std::vector<std::string>& ids)
{
    const std::unordered_set<std::string> present{ids.begin(), ids.end()};
    for (auto index = m_children.size(); index-- > 0;) {
        if (present.contains(m_children[index]->m_id))
            continue;
        const auto vanished = take(index);
        emitChildren("children-changed::remove", index, *vanished);
    }
}

void AccessibleNode::placeAt(std::size_t index, const std::string& id)
{
    if (index < m_children.size() && m_children[index]->m_id == id)
        return;
    const auto found = std::ranges::find(m_children, id, [](auto& child) { return child->m_id; });
    std::unique_ptr<AccessibleNode> child;
    if (found == m_children.end()) {
        child = std::make_unique<AccessibleNode>(*this, id);
    } else { // there is no word for a child that moves
        const auto before = static_cast<std::size_t>(found - m_children.begin());
        child = take(before);
        emitChildren("children-changed::remove", before, *child);
    }
    auto& placed = *child;
    m_children.insert(m_children.begin() + static_cast<std::ptrdiff_t>(index), std::move(child));
    emitChildren("children-changed::add", index, placed);
}

std::unique_ptr<AccessibleNode> AccessibleNode::take(std::size_t index)
{
    auto child = std::move(m_children[index]);
    m_children.erase(m_children.begin() + static_cast<std::ptrdiff_t>(index));
    return child;
}

void AccessibleNode::emitChildren(
    const char* signal, std::size_t index, const AccessibleNode& child)
{
    g_signal_emit_by_name(object(), signal, static_cast<guint>(index), child.object());
}

}
