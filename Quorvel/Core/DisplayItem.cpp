#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

std::string displayItemID(WindowID window)
{
    return "s-" + std::to_string(raw(window));
}

std::string displayItemID(const DisplayItem& item)
{
    return displayItemID(std::get<ChipData>(item).id);
}

}
