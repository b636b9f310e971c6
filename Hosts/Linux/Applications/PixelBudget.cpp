#include "Hosts/Linux/Applications/PixelBudget.h"

#include <utility>

namespace quorvel::xdg {

void PixelBudget::Piece::use(std::size_t bytes)
{
    leave();
    if (bytes == 0)
        return;
    auto& budget = *m_budget;
    m_bytes = bytes;
    m_place = budget.m_pieces.insert(budget.m_pieces.begin(), this);
    budget.m_bytes += bytes;
    while (budget.m_bytes > budget.m_limit && budget.m_pieces.back() != this) {
        auto& oldest = *budget.m_pieces.back();
        oldest.leave();
        oldest.drop();
    }
}

void PixelBudget::Piece::leave()
{
    if (m_bytes == 0)
        return;
    m_budget->m_bytes -= std::exchange(m_bytes, 0);
    m_budget->m_pieces.erase(m_place);
}

}
