#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel {

/// Whether controls that were made for one description can show the other: the same rows in the
/// same places, whatever their values.
bool haveSameControls(const SettingsDescription&, const SettingsDescription&);

/// The system's own symbol for the icon of a page; empty for an icon that is not known.
std::string_view symbolNameOf(std::string_view icon);

/// A table says before which row something is dropped while it is still where it was.
constexpr std::size_t placeAfterDrop(std::size_t from, std::size_t before)
{
    return before > from ? before - 1 : before;
}

/// What a key does to the selected row of a list.
enum class ListKey { moveUp, moveDown, remove };

/// Absent: the key is the table's own.
std::optional<ListKey> listKeyOf(const KeyEvent&);

/// The place of the row that stands at `from` once the key has moved it; absent at the end of the
/// list, and for a key that moves nothing.
std::optional<std::size_t> placeAfterKey(ListKey, std::size_t from, std::size_t count);

}
