#include "app/frmExportAudio.h"

#include "app/ElidedLabel.h"
#include "app/QtText.h"
#include "app/ShownText.h"
#include "app/TimeLeft.h"
#include "controls/Labels.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"
#include "core/TextUtilities.h"

#include <QCheckBox>
#include <QPushButton>
#include <algorithm>
#include <utility>

namespace velmora::app {
namespace {

constexpr QSize kSize{388, 150};
constexpr int kMargin = 20;
constexpr int kRow = 26;
constexpr int kLine = 16;
constexpr int kCaption = 44;
constexpr int kInside = 348;
constexpr int kLastLine = 107;
constexpr int kButton = 80;
constexpr QRect kMeter{60, 74, 220, 14};

} // namespace

frmExportAudio::frmExportAudio(core::Environment& environment, project::ProjectFile_Class& project,
                               std::function<void(bool)> mute, QWidget* parent)
    : QDialog(parent)
    , m_environment(environment)
    , m_export(environment, project, *this)
    , m_file(new ElidedLabel(this))
    , m_position(new controls::ValueLabel(controls::theme::Font(12, QFont::Medium), Qt::AlignLeft, this))
    , m_left(new controls::ValueLabel(controls::theme::Font(12), Qt::AlignRight, this))
    , m_meter(new controls::VUMeter_UserCtrl(this))
{
    setWindowTitle("Exporting audio");
    setWindowModality(Qt::ApplicationModal);
    setFixedSize(kSize);
    int top = kMargin;
    for (const char* caption : {"File:", "Pos:", "Level:"}) {
        (new controls::CaptionLabel(caption, this))->setGeometry(kMargin, top, kCaption, kLine);
        top += kRow;
    }
    m_file->setGeometry(kMargin + kCaption, kMargin, kInside - kCaption, kLine);
    m_position->setGeometry(kMargin + kCaption, kMargin + kRow, 120, kLine);
    m_left->setGeometry(kMargin + kInside / 2, kMargin + kRow, kInside / 2, kLine);
    m_meter->setObjectName("VUMeter");
    m_meter->setAccessibleName("Level");
    m_meter->setGeometry(kMeter);

    auto* muteCheck = new QCheckBox("Mute", this);
    muteCheck->setObjectName("muteCheck");
    auto* cancel = new QPushButton("Cancel", this);
    cancel->setObjectName("button_Cancel");
    muteCheck->setGeometry(kMargin, kLastLine, 120, controls::theme::kControlHeight);
    cancel->setGeometry(kMargin + kInside - kButton, kLastLine, kButton, controls::theme::kControlHeight);
    // Return must not end it.
    cancel->setAutoDefault(false);
    connect(muteCheck, &QCheckBox::toggled, this, std::move(mute));
    connect(cancel, &QPushButton::clicked, this, &frmExportAudio::reject);
}

void frmExportAudio::StartExport(std::int32_t format, const std::string& path)
{
    const core::Configuration& config = m_environment.config;
    const core::EncoderFormat& encoder =
        format == audio::AudioExport::kWma ? config.EncWMAFormat : config.EncWaveFormat;
    m_export.SampleRate = encoder.freq;
    m_export.Channels = encoder.nChannels;
    m_export.Bitrate = encoder.bitrate;
    m_export.FilePath = path;
    m_export.encoder_Format(format);
    m_file->SetText(ToQt(ShownPath(path)));
    show();
    m_elapsed.start();
    m_export.StartExport();
    hide();
}

void frmExportAudio::reject()
{
    m_export.StopExport();
}

bool frmExportAudio::Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t meter)
{
    m_position->SetText(ToQt(core::FormatTimePos(static_cast<std::int32_t>(positionMS), false)));
    m_left->SetText(TimeLeftText(m_elapsed.elapsed(), static_cast<double>(positionMS) / static_cast<double>(totalMS)));
    m_meter->SetValue(meter);
    return true;
}

} // namespace velmora::app
