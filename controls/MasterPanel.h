#pragma once

#include <QWidget>
#include <cstdint>

namespace velmora::controls {

class ValueLabel;
class imgButton;
class imgVScroll;

/// The master's panel: volume, 0..100, and mute. It tells of what the user does; what code sets tells nothing.
class MasterPanel : public QWidget {
    Q_OBJECT

public:
    explicit MasterPanel(QWidget* parent = nullptr);

    void SetVolume(std::int32_t volume);
    void SetMute(bool mute);
    QSize sizeHint() const override { return {97, 333}; }

signals:
    /// Also from a button at its end of the range, which changes nothing.
    void VolumeChosen(int volume);
    void MuteChosen(bool mute);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void ShowText();
    void AddStep(int index, int top, const char* icon, const QString& toolTip, int step);

    imgVScroll* m_fader;
    ValueLabel* m_value;
    imgButton* m_mute = nullptr;
};

} // namespace velmora::controls
