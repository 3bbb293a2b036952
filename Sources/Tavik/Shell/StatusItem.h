#pragma once

#include "Base/Published.h"
#include "Ports/TrayHost.h"
#include "Shell/MenuRow.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tavik {

/// The icon in the tray, with its menu.
///
/// Qt decides at the first icon of a process how trays are spoken to, by a question that it waits
/// for, and never asks again: so the icon is made when a panel is there to take it, however late
/// that is after the program's start, and not while an earlier host owes its answer.
class StatusItem {
public:
    /// `onActivate` is called for a plain click on the icon. The hosts, of which earlier ones are
    /// preferred, must outlive the item.
    StatusItem(std::vector<const TrayHost*> hosts, MenuRows rows, std::function<void()> onActivate);

    ~StatusItem() = default;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Shows the count of due words, and the rows as they are now: some panels show the menu
    /// without asking whether it has changed.
    void update(std::int64_t dueNow);

    /// Whether a panel is there to show the icon.
    bool isShown() const;

private:
    void rebuildMenu();
    void showIfPossible();

    std::vector<const TrayHost*> hosts;
    MenuRows rows;
    std::vector<MenuRow> shownRows;
    std::function<void()> onActivate;
    std::int64_t dueNow = 0;
    QMenu menu;
    std::unique_ptr<QSystemTrayIcon> icon;
    std::vector<Subscription> subscriptions;
};

} // namespace tavik
