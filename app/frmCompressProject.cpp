#include "app/frmCompressProject.h"

#include "app/ElidedLabel.h"
#include "app/QtText.h"
#include "app/ShownText.h"
#include "app/TimeLeft.h"
#include "controls/Labels.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"

#include <QPushButton>

namespace velmora::app {
namespace {

constexpr QSize kSize{388, 176};
constexpr int kMargin = 20;
constexpr int kRow = 26;
constexpr int kLine = 16;
constexpr int kCaption = 64;
constexpr int kInside = 348;
constexpr int kLastLine = 133;
constexpr int kButton = 80;
constexpr QRect kProgress{80, 100, 220, 14};
constexpr int kBarMax = 100;

} // namespace

frmCompressProject::frmCompressProject(core::Environment& environment, project::ProjectFile_Class& project,
                                       QWidget* parent)
    : QDialog(parent)
    , m_compression(environment, project, *this)
    , m_source(new ElidedLabel(this))
    , m_destination(new ElidedLabel(this))
    , m_fileNumber(new controls::ValueLabel(controls::theme::Font(12), Qt::AlignLeft, this))
    , m_progress(new controls::VUMeter_UserCtrl(this))
    , m_left(new controls::ValueLabel(controls::theme::Font(12), Qt::AlignLeft, this))
{
    setWindowTitle("Compress project");
    setWindowModality(Qt::ApplicationModal);
    setFixedSize(kSize);
    m_source->setObjectName("Label_SrcFile");
    m_destination->setObjectName("Label_DestFile");
    m_fileNumber->setObjectName("Label_FileN");
    m_progress->setObjectName("ProgressBar");
    m_progress->SetMaxValue(kBarMax);
    m_progress->setAccessibleName("Progress");
    int top = kMargin;
    const auto row = [this, &top](const char* caption, QWidget* value) {
        (new controls::CaptionLabel(caption, this))->setGeometry(kMargin, top, kCaption, kLine);
        value->setGeometry(kMargin + kCaption, top, kInside - kCaption, kLine);
        top += kRow;
    };
    row("Source:", m_source);
    row("Dest:", m_destination);
    row("File:", m_fileNumber);
    row("Progress:", m_progress);
    m_progress->setGeometry(kProgress);

    auto* cancel = new QPushButton("Cancel", this);
    cancel->setObjectName("Command1");
    cancel->setAutoDefault(false);
    m_left->setGeometry(kMargin, kLastLine, kInside / 2, controls::theme::kControlHeight);
    cancel->setGeometry(kMargin + kInside - kButton, kLastLine, kButton, controls::theme::kControlHeight);
    connect(cancel, &QPushButton::clicked, this, &frmCompressProject::reject);
}

void frmCompressProject::StartCompression()
{
    show();
    m_elapsed.start();
    m_compression.StartCompression();
    hide();
}

void frmCompressProject::reject()
{
    m_compression.Cancel();
}

void frmCompressProject::ShowFile(std::size_t number, std::size_t total, const std::string& source,
                                  const std::string& destination)
{
    m_source->SetText(ToQt(ShownPath(source)));
    m_destination->SetText(ToQt(ShownPath(destination)));
    m_fileNumber->SetText(QString("%1/%2").arg(number).arg(total));
}

void frmCompressProject::Update(double file, double run)
{
    m_progress->SetValue(static_cast<std::int32_t>(file * kBarMax));
    m_left->SetText(TimeLeftText(m_elapsed.elapsed(), run));
}

} // namespace velmora::app
