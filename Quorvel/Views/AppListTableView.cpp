#include "Quorvel/Views/AppListTableView.h"

#include "Quorvel/Views/AppListCoordinator.h"

namespace quorvel {

AppListTableView::AppListTableView(
    std::unique_ptr<Coordinator> coordinator, const Palette& palette, Dispatch& dispatch)
    : m_coordinator(std::move(coordinator))
    , m_list(&addChild(std::make_unique<ListView>(*m_coordinator, palette, dispatch)))
{
    m_coordinator->setTableView(*m_list);
}

AppListTableView::~AppListTableView() = default;

void AppListTableView::layout()
{
    m_list->setFrame(bounds());
}

}
