#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <array>
#include <cstdint>

namespace velmora::controls {

class imgButton;

/// A flat toolbar of up to `Const_Max_Buttons` icons. Buttons are addressed by the order in which they were added; an
/// index that no button has is a fault of the caller and does nothing.
class CoolToolBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int Const_Max_Buttons = 17;

    explicit CoolToolBar(QWidget* parent = nullptr);

    struct Button {
        QString icon;
        QString caption; ///< the tool tip, and the name for assistive tools
        QString key;     ///< shown behind the tool tip
        QRect place;
        bool isRecord = false;
        bool hasOnLook = false; ///< for `SetButtonOn`
    };
    /// The index of the new button; -1 when the table is full.
    int AddButton(const Button& button);
    void DeleteButton(int index);
    /// Null for an index that no button has.
    imgButton* GetButton(int index) const;
    bool ButtonIsUsed(int index) const { return GetButton(index) != nullptr; }

    bool ButtonEnabled(int index) const;
    void SetButtonEnabled(int index, bool enabled);
    /// The lit look: Play while playing, Record while recording.
    void SetButtonOn(int index, bool on);
    /// A hairline between two groups; left and top of 14 px.
    void AddSeparator(const QPoint& at) { m_separators.append(at); }

signals:
    void ButtonClicked(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void FocusNeighbour(const QObject* button, int step);

    std::array<imgButton*, Const_Max_Buttons> m_buttons{};
    QList<QPoint> m_separators;
};

/// The main window's toolbar, at its places: 13 buttons in the order of their indices, with their tool tips, and room
/// for the time display and the marks.
class MainToolBar : public CoolToolBar {
    Q_OBJECT

public:
    enum Index { New, Open, Save, Undo, Redo, Play, Stop, Rewind, Back, Ahead, Record, Repeat, AddMark };

    explicit MainToolBar(QWidget* parent = nullptr);
    QSize sizeHint() const override { return {1085, 26}; }
};

} // namespace velmora::controls
