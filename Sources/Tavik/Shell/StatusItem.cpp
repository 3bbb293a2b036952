#include "Shell/StatusItem.h"

#include "Shell/StatusIcon.h"
#include "Shell/StatusTexts.h"

#include <QAction>
#include <QKeySequence>
#include <QString>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace tavik {

StatusItem::StatusItem(std::vector<const TrayHost*> hosts, MenuRows rows,
                       std::function<void()> onActivate)
    : hosts(std::move(hosts)), rows(std::move(rows)), onActivate(std::move(onActivate)) {
    QObject::connect(&menu, &QMenu::aboutToShow, [this] { rebuildMenu(); });
    rebuildMenu();
    for (const TrayHost* const host : this->hosts)
        // After the change, when all hosts can be read.
        subscriptions.push_back(host->presence().observe([this](TrayHost::Presence) {
            QTimer::singleShot(0, &menu, [this] { showIfPossible(); });
        }));
    showIfPossible();
}

bool StatusItem::isShown() const {
    const auto decisive = std::ranges::find_if(hosts, [](const TrayHost* host) {
        return host->presence().value() != TrayHost::Presence::absent;
    });
    return decisive != hosts.end()
           && (*decisive)->presence().value() == TrayHost::Presence::present;
}

void StatusItem::showIfPossible() {
    if (icon || !isShown()) return;
    icon = std::make_unique<QSystemTrayIcon>();
    icon->setContextMenu(&menu);
    QObject::connect(icon.get(), &QSystemTrayIcon::activated,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) onActivate();
                     });
    update(dueNow);
    icon->show();
}

void StatusItem::update(std::int64_t dueNow) {
    this->dueNow = dueNow;
    rebuildMenu();
    if (!icon) return;
    icon->setIcon(statusIcon(dueNow));
    icon->setToolTip(QString::fromStdString(statusToolTip(dueNow)));
}

void StatusItem::rebuildMenu() {
    std::vector<MenuRow> current = rows();
    // An open menu would lose its place, and panels the entries they know.
    if (std::ranges::equal(current, shownRows, looksLike)) return;
    shownRows = std::move(current);
    menu.clear();
    for (const MenuRow& row : shownRows) {
        if (row.beginsGroup && !menu.isEmpty()) menu.addSeparator();
        QAction* const action = menu.addAction(QString::fromStdString(row.title));
        if (row.key != 0)
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(std::toupper(row.key))));
        QObject::connect(action, &QAction::triggered, row.action);
    }
}

} // namespace tavik
