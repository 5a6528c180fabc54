#pragma once

#include <QColor>
#include <QWidget>
#include <cstdint>

namespace velmora::controls {

/// A meter of small bars that run from one colour to another. It knows nothing of sound: its owner sets `Value`, and
/// only the bars that change are drawn again. The first bar starts one step in. Sizes are logical pixels.
class VUMeter_UserCtrl : public QWidget {
    Q_OBJECT

public:
    struct Look {
        bool ShowEmptyBars = true;
        QColor EmptyBarColor;
        QColor BackColor;
        std::int32_t BarShapeWidth = 4; ///< of the coloured part of a bar
        std::int32_t BarWidth = 5;      ///< from bar to bar
        QColor Color1;
        QColor Color2;
        bool BorderVisible = false;
        QColor BorderColor;
    };

    explicit VUMeter_UserCtrl(QWidget* parent = nullptr);

    std::int32_t Value() const { return m_value; }
    /// Limited to 0..`MaxValue`.
    void SetValue(std::int32_t value);
    /// The value at which all bars are lit.
    std::int32_t MaxValue() const { return m_maxValue; }
    void SetMaxValue(std::int32_t value);
    const Look& GetLook() const { return m_look; }
    void SetLook(const Look& look);

    std::int32_t BarCount() const;
    /// 0 for none.
    std::int32_t LitBars() const { return LitBars(m_value); }
    /// Of bar `i`, from 1; a bar keeps its colour whatever the value.
    QColor BarColour(std::int32_t i) const;

    QSize sizeHint() const override { return {220, 14}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::int32_t LitBars(std::int32_t value) const;
    /// Of bar `i` and the gap behind it.
    QRect StepRect(std::int32_t i) const;

    Look m_look;
    std::int32_t m_maxValue = 40;
    std::int32_t m_value = 0;
};

} // namespace velmora::controls
