#pragma once

#include <memory>
#include <vector>

#include "Quorvel/Views/AppListItem.h"
#include "Quorvel/Views/Kit/ListView.h"

namespace quorvel {

/// The launcher's list on the screen, and what drives it.
class AppListTableView final : public View {
public:
    class Coordinator;

    AppListTableView(std::unique_ptr<Coordinator>, const Palette&, Dispatch&);
    ~AppListTableView() override;

    Coordinator& coordinator() { return *m_coordinator; }
    const Coordinator& coordinator() const { return *m_coordinator; }
    ListView& list() { return *m_list; }
    const ListView& list() const { return *m_list; }

private:
    void layout() override;

    std::unique_ptr<Coordinator> m_coordinator;
    ListView* m_list;
};

}
