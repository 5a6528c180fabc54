#pragma once

#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QWidget>

namespace velmora::controls {

/// A widget whose ring goes round a part of it, as round the knob of a slider.
class FocusShaped {
public:
    virtual ~FocusShaped() = default;
    /// In the widget's coordinates.
    virtual QRectF FocusShape() const = 0;
    virtual double FocusRadius() const = 0;
};

/// Shows the ring round the control that got focus by Tab or a shortcut, and hides it at the next click. It stands over
/// the window, since it is larger than the control. One per application, which owns it.
class FocusRing : public QObject {
    Q_OBJECT

public:
    /// Watches the application from now on; a second call does nothing.
    static void Install();
    /// The shape of `widget` has changed.
    static void ShapeChanged(const QWidget* widget);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    class Frame;

    FocusRing();
    void Show(QWidget* target);
    void Hide();
    void Place();

    QPointer<QWidget> m_target;
    QPointer<QWidget> m_frame;
};

} // namespace velmora::controls
