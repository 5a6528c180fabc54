#include "app/MenuBar.h"

#include "app/QtText.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace velmora::app {
namespace {

void AddEntries(QMenu* menu, const std::vector<MenuEntry>& entries)
{
    for (const MenuEntry& entry : entries) {
        if (entry.IsSeparator()) {
            menu->addSeparator();
            continue;
        }
        const QString text = ToQt(entry.text);
        QAction* action = nullptr;
        if (!entry.entries.empty()) {
            QMenu* below = menu->addMenu(text);
            AddEntries(below, entry.entries);
            action = below->menuAction();
        } else {
            // The key itself is a shortcut of the window; here it only stands at the right.
            action = menu->addAction(entry.key.empty() ? text : text + '\t' + ToQt(entry.key));
            action->setCheckable(entry.checked.has_value());
            action->setChecked(entry.checked.value_or(false));
            if (entry.run) {
                QObject::connect(action, &QAction::triggered, menu, [run = entry.run] { run(); });
            }
        }
        action->setEnabled(entry.enabled);
    }
}

} // namespace

MenuBar::MenuBar(const MenuModel& model, QMainWindow* window)
    : QObject(window)
    , m_model(model)
    , m_window(window)
{
    for (int i = 0; i < MenuModel::kMenus; ++i) {
        QMenu* menu = window->menuBar()->addMenu(ToQt(MenuModel::Title(i)));
        Fill(menu, i);
        connect(menu, &QMenu::aboutToShow, this, [this, menu, i] { Fill(menu, i); });
    }
    for (const std::string& key : model.Keys()) {
        auto* shortcut = new QShortcut(QKeySequence(ToQt(key)), window);
        connect(shortcut, &QShortcut::activated, this, [this, key] { m_model.Press(key); });
        m_shortcuts.push_back(shortcut);
    }
}

void MenuBar::Enable(bool enable)
{
    m_window->menuBar()->setEnabled(enable);
    for (QShortcut* shortcut : m_shortcuts) {
        shortcut->setEnabled(enable);
    }
}

void MenuBar::Fill(QMenu* menu, int index)
{
    // A submenu outlives its line in the menu.
    qDeleteAll(menu->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    menu->clear();
    AddEntries(menu, m_model.Entries(index));
}

} // namespace velmora::app
