#include "controls/Accessibility.h"

#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgScroll.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace velmora::controls {
namespace {

class AccessibleSlider : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleSlider(imgScroll& slider)
        : QAccessibleWidget(&slider, QAccessible::Slider)
        , m_slider(slider)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text what) const override
    {
        return what == QAccessible::Value ? m_slider.ValueText() : QAccessibleWidget::text(what);
    }
    QVariant currentValue() const override { return m_slider.Value(); }
    void setCurrentValue(const QVariant& value) override { m_slider.ChooseValue(value.toDouble()); }
    QVariant maximumValue() const override { return m_slider.MaxValue(); }
    QVariant minimumValue() const override { return m_slider.MinValue(); }
    QVariant minimumStepSize() const override { return m_slider.Step(); }

private:
    imgScroll& m_slider;
};

class AccessibleMeter : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleMeter(VUMeter_UserCtrl& meter)
        : QAccessibleWidget(&meter, QAccessible::ProgressBar)
        , m_meter(meter)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        return state;
    }
    QVariant currentValue() const override { return m_meter.Value(); }
    void setCurrentValue(const QVariant& /*value*/) override {}
    QVariant maximumValue() const override { return m_meter.MaxValue(); }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }

private:
    VUMeter_UserCtrl& m_meter;
};

QAccessibleInterface* MakeInterface(const QString& /*className*/, QObject* object)
{
    if (auto* slider = qobject_cast<imgScroll*>(object)) {
        return new AccessibleSlider(*slider);
    }
    if (auto* meter = qobject_cast<VUMeter_UserCtrl*>(object)) {
        return new AccessibleMeter(*meter);
    }
    return nullptr;
}

} // namespace

void InstallAccessibility()
{
    QAccessible::installFactory(MakeInterface);
}

void TellValueChanged(QWidget& widget, double value)
{
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(&widget, value);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace velmora::controls
