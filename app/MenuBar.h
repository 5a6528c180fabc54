#pragma once

#include "app/MenuModel.h"

#include <QObject>
#include <vector>

class QMainWindow;
class QMenu;
class QShortcut;

namespace velmora::app {

/// Draws a `MenuModel` as the menu bar of a window: each menu is filled when it opens, and the keys of all of them work
/// whatever is open. Belongs to the window.
class MenuBar final : public QObject {
public:
    /// `model` outlives this. The project must be there.
    MenuBar(const MenuModel& model, QMainWindow* window);

    /// While long work runs, neither menus nor keys do anything.
    void Enable(bool enable);

private:
    void Fill(QMenu* menu, int index);

    const MenuModel& m_model;
    QMainWindow* m_window;
    std::vector<QShortcut*> m_shortcuts;
};

} // namespace velmora::app
