#pragma once

#include "controls/FocusRing.h"

#include <QComboBox>

namespace velmora::controls {

/// A combo whose list is a menu. `activated` tells of what the user chose; what code sets tells nothing to those who
/// listen to it. The text shown need not be an entry of the list. Who chooses with the mouse leaves the combo, and does
/// not go on typing in it.
class Combo : public QComboBox, public FocusShaped {
    Q_OBJECT

public:
    explicit Combo(QWidget* parent = nullptr);

    /// Replaces the entries; the text shown stays.
    void SetItems(const QStringList& items);
    /// The text shown. An entry of the same text becomes the present one.
    void SetText(const QString& text);
    const QString& Text() const { return m_text; }
    /// Shown, quieter, while there are no entries and no text.
    void SetEmptyText(const QString& text);

    void showPopup() override;
    void hidePopup() override;
    QSize sizeHint() const override;

    QRectF FocusShape() const override { return rect(); }
    double FocusRadius() const override;

signals:
    /// The combo takes or gives up the keyboard.
    void KeyboardFocus(bool got);

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QString m_text;
    QString m_emptyText;
    bool m_popupOpen = false;
    bool m_openedByMouse = false;
    bool m_hasKeyboard = false;
};

} // namespace velmora::controls
