#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace velmora::controls {

/// Gives a menu or tool tip its round corners and, where wanted, its shadow: a window of its own below it, which takes
/// no input, so that the menu's own place and mouse stay as they are. A desktop that does not blend windows gets
/// corners that are cut out, and no shadow. Under X11 only: elsewhere nobody may say where a window stands, and windows
/// are always blended.
class PopupShape : public QObject {
    Q_OBJECT

public:
    enum class Shadow { None, Below };

    /// `popup` has a translucent ground. Belongs to it; a second call for the same one does nothing.
    static void Attach(QWidget* popup, double radius, Shadow shadow);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    PopupShape(QWidget* popup, double radius, Shadow shadow);
    void Show();
    void CutCorners();

    QWidget* m_popup;
    double m_radius;
    Shadow m_shadow;
    QPointer<QWidget> m_below;
};

} // namespace velmora::controls
