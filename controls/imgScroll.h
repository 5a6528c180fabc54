#pragma once

#include "controls/FocusRing.h"
#include "controls/SliderRange.h"

#include <QWidget>
#include <functional>
#include <optional>

namespace velmora::controls {

/// What the sliders share: range and value, mouse, wheel, keys, and what assistive tools read. Pressing and dragging
/// set the value under the pointer; a double click goes back to the default value; arrows go one step, Page keys ten,
/// Home and End to the ends. `Change` tells of the user's changes, at most one per event, and of nothing else.
class imgScroll : public QWidget, public FocusShaped {
    Q_OBJECT

public:
    double MinValue() const { return m_range.MinValue; }
    double MaxValue() const { return m_range.MaxValue; }
    double Value() const { return m_range.Value; }
    void SetRange(double minValue, double maxValue);
    /// Limited to the range. Tells nobody.
    void SetValue(double value);
    void SetUseIntValue(bool use) { m_range.UseIntValue = use; }
    /// Where a double click goes; none by default.
    void SetDefaultValue(double value) { m_default = value; }
    /// One step, of the arrows.
    void SetStep(double step) { m_step = step; }
    double Step() const { return m_step; }
    /// The value as the user reads it; a plain number if not set.
    void SetValueText(std::function<QString(double)> text) { m_valueText = std::move(text); }
    QString ValueText() const;

    /// As by the user: limits `value` and tells of the change, if there is one.
    void ChooseValue(double value);
    void StepBy(double steps) { ChooseValue(Value() + steps * m_step); }

    double FocusRadius() const override;

signals:
    void Change(double value);

protected:
    explicit imgScroll(QWidget* parent);

    const SliderRange& Range() const { return m_range; }
    bool Dragged() const { return m_dragged; }
    virtual double ValueAt(const QPointF& at) const = 0;
    /// Colour of a knob or cap in the present state.
    QColor HandleColour() const;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    SliderRange m_range;
    std::optional<double> m_default;
    double m_step = 1;
    bool m_dragged = false;
    WheelSteps m_wheel;
    std::function<QString(double)> m_valueText;
};

/// A groove with a knob, lit from the range's origin: its left end or, where the range runs both ways, its middle.
class imgHScroll : public imgScroll {
    Q_OBJECT

public:
    explicit imgHScroll(QWidget* parent = nullptr);

    /// The range runs from -n to n.
    void SetCentred(bool centred);
    QRectF FocusShape() const override;
    QSize sizeHint() const override { return {184, 20}; }

protected:
    double ValueAt(const QPointF& at) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    SliderTrack Track() const;

    bool m_centred = false;
};

/// A fader: a cap on an upright groove, lit from below, with ticks at each quarter.
class imgVScroll : public imgScroll {
    Q_OBJECT

public:
    explicit imgVScroll(QWidget* parent = nullptr);

    QRectF FocusShape() const override;
    QSize sizeHint() const override { return {36, 106}; }

protected:
    double ValueAt(const QPointF& at) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The cap's middle, from the top.
    double CapMiddle() const;
};

/// A field that is filled up to the value.
class imgHFill : public imgScroll {
    Q_OBJECT

public:
    explicit imgHFill(QWidget* parent = nullptr);

    QRectF FocusShape() const override { return rect(); }
    QSize sizeHint() const override { return {80, 12}; }

protected:
    double ValueAt(const QPointF& at) const override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace velmora::controls
