#pragma once

#include "controls/FocusRing.h"

#include <QPushButton>
#include <QString>

namespace velmora::controls {

enum ButtonMode {
    ButtonMode_Click, ///< acts on release
    ButtonMode_Switch ///< each click inverts `Value`, then acts
};

/// Which of the look's buttons is drawn.
enum class ButtonLook {
    Raised,
    Mute,   ///< white while on
    Number, ///< the number of a channel
    Step,   ///< flat, beside a slider
    Tool,   ///< flat, in a toolbar
    Record, ///< a `Tool` that is red
};

/// A button that draws itself: caption, icon or both, raised or flat, with an on state. It tells of clicks by
/// `clicked`; a `Value` that code sets tells nothing. Space, Return and Enter click.
class imgButton : public QPushButton, public FocusShaped {
    Q_OBJECT

public:
    explicit imgButton(ButtonLook look, QWidget* parent = nullptr);

    ButtonMode Mode() const { return m_mode; }
    void SetMode(ButtonMode mode);
    bool Value() const { return isChecked(); }
    void SetValue(bool value);
    /// For a button that shows an on state without being a switch.
    void SetShowsValue() { setCheckable(true); }

    void SetCaption(const QString& caption);
    /// By the name of its file; "" for none.
    void SetIcon(const QString& name);
    /// `text`, then `key` in brackets; the name for assistive tools, if there is no caption.
    void SetToolTip(const QString& text, const QString& key = {});
    /// The channel of this number is being recorded.
    void SetRecordingDot(bool shown);
    /// Repeats while held down.
    void SetRepeats() { setAutoRepeat(true); }

    QRectF FocusShape() const override;
    double FocusRadius() const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override;

private:
    void DrawContent(QPainter& painter, const QRectF& rect, const QColor& ink) const;
    QFont CaptionFont() const;

    ButtonLook m_look;
    ButtonMode m_mode = ButtonMode_Click;
    QString m_iconName;
    bool m_recordingDot = false;
    /// The value changes by code or by a click, not by an assistive tool.
    bool m_changing = false;
};

} // namespace velmora::controls
