#pragma once

#include "controls/StripPresenter.h"
#include "controls/StripView.h"

#include <QWidget>
#include <array>
#include <map>

namespace velmora::controls {

class Combo;
class ReadOnlyField;
class TitleLabel;
class ValueLabel;
class VUMeter_UserCtrl;
class imgButton;
class imgScroll;

/// A property of widgets that hold the keyboard while they have the focus.
inline constexpr const char* kTakesKeyboard = "takesKeyboard";

/// What the two strips share: a panel of 327 px that shows one channel at a time. It draws what its presenter tells and
/// hands on what the user does. Its controls have their given names as object names.
class ChannelFrame : public QWidget, private StripView {
    Q_OBJECT

public:
    /// A project begins.
    void Initialize_Class(project::ProjectFile_Class& project);
    /// The project is about to end.
    void Release() { m_presenter.Release(); }
    StripPresenter& Presenter() { return m_presenter; }

    QSize sizeHint() const override { return {327, 333}; }

protected:
    ChannelFrame(StripKind kind, QWidget* parent);

    QWidget* Content() const { return m_content; }
    /// A row of caption, value, slider and step buttons; `row` from 0.
    void AddRow(int row, StripValue which, const char* slider, const char* buttons);
    imgButton* AddSwitch(StripSwitch which, const char* name, const QRect& place, const QString& toolTip,
                         const QString& key);
    imgButton* AddButton(const char* icon, const char* name, const QRect& place, const QString& toolTip);
    VUMeter_UserCtrl* AddMeter(const char* name, const QRect& place, const QString& accessibleName);
    void AddVolume(const char* slider, const char* buttons, const char* label);
    /// The switches' row, pack combo and output meter.
    void AddLowerPart(const QString& soloToolTip, const QString& keyPrefix);
    void AddCaption(const QString& text, double middle);

    void ShowFile(const std::string& /*title*/) override {}
    void ShowInputLevel(std::int32_t /*level*/) override {}

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    virtual void PaintMore(QPainter& /*painter*/) {}

private:
    class NoChannelsPic;
    struct Caption {
        QString text;
        double left;
        double middle;
    };

    void AddHead();
    void AddSteps(imgScroll& slider, const char* name, const QPoint& plus, const QPoint& minus, bool upright,
                  const QString& caption);
    void ConnectValue(imgScroll& slider, ValueLabel& label, StripValue which);
    void ShowMoreChannels();

    void ShowNoChannels(bool none) override;
    void ShowTitle(const std::string& title) override;
    void ShowValue(StripValue which, double value) override;
    void ShowSwitch(StripSwitch which, bool on) override;
    void ShowChannelButtons(const ChannelButtons& buttons) override;
    void ShowPacks(const std::vector<std::string>& names) override;
    void ShowPack(const std::string& name) override;
    void ShowLevel(std::int32_t level) override;

    StripPresenter m_presenter;
    QWidget* m_content;
    NoChannelsPic* m_noChannels;
    TitleLabel* m_title;
    std::array<imgButton*, ChannelButtons::kNumbers + 1> m_numbers{};
    struct ValueControls {
        imgScroll* slider;
        ValueLabel* label;
    };
    std::map<StripValue, ValueControls> m_values;
    std::map<StripSwitch, imgButton*> m_switches;
    Combo* m_packs = nullptr;
    VUMeter_UserCtrl* m_meter = nullptr;
    QList<Caption> m_captions;
};

/// The strip of the music channels.
class MusicFrame_UserCtrl : public ChannelFrame {
    Q_OBJECT

public:
    explicit MusicFrame_UserCtrl(QWidget* parent = nullptr);

private:
    void ShowFile(const std::string& title) override;

    ReadOnlyField* m_file;
};

/// The strip of the voice channels.
class VoiceFrame_UserCtrl : public ChannelFrame {
    Q_OBJECT

public:
    explicit VoiceFrame_UserCtrl(QWidget* parent = nullptr);
    QSize sizeHint() const override { return {327, 332}; }

private:
    void ShowInputLevel(std::int32_t level) override;
    void PaintMore(QPainter& painter) override;

    VUMeter_UserCtrl* m_inputMeter;
};

} // namespace velmora::controls
