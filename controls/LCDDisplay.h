#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>

namespace velmora::controls {

/// The time display: a mark of the transport's state, and the time in digits that keep their places. The mark of a
/// recording pulses, unless the desktop asks for less motion.
class LCDDisplay : public QLabel {
    Q_OBJECT

public:
    enum class State { Stopped, Playing, Recording };

    explicit LCDDisplay(QWidget* parent = nullptr);

    /// As "mm:ss".
    void SetTime(const QString& time);
    void SetState(State state);
    QSize sizeHint() const override { return {105, 21}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void DrawMark(QPainter& painter) const;
    double Pulse() const;

    State m_state = State::Stopped;
    QTimer m_pulseTimer;
    QElapsedTimer m_recordingSince;
};

} // namespace velmora::controls
