#pragma once

#include "controls/FocusRing.h"

#include <QLabel>
#include <QLineEdit>

namespace velmora::controls {

/// A value that changes in place: its digits keep their places.
class ValueLabel : public QLabel {
    Q_OBJECT

public:
    ValueLabel(const QFont& font, Qt::Alignment alignment, QWidget* parent);
    void SetText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// The quiet name of what stands beside it.
class CaptionLabel : public QLabel {
    Q_OBJECT

public:
    CaptionLabel(const QString& text, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A title that the user may change: by a double click, Return or F2. Cut to its width.
class TitleLabel : public QLabel, public FocusShaped {
    Q_OBJECT

public:
    explicit TitleLabel(QWidget* parent);

    QRectF FocusShape() const override;
    double FocusRadius() const override;

signals:
    void RenameWanted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString Shown() const;
};

/// A field to read a text from; what does not fit is cut with an ellipsis.
class ReadOnlyField : public QLineEdit {
    Q_OBJECT

public:
    explicit ReadOnlyField(QWidget* parent);
    /// "(none)", quieter, for no text.
    void SetText(const QString& text);

signals:
    /// The field takes or gives up the keyboard.
    void KeyboardFocus(bool got);

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace velmora::controls
