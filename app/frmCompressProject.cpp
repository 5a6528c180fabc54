#include "app/frmCompressProject.h"

#include "app/ElidedLabel.h"
#include "app/QtText.h"
#include "app/ShownText.h"
#include "app/TimeLeft.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"

#include <QLabel>
#include <QPushButton>

namespace velmora::app {
namespace {

constexpr QSize kSize{388, 190};
constexpr int kMargin = 20;
constexpr int kLine = 22;
constexpr int kCaption = 64;
constexpr int kInside = 348;
constexpr int kBarMax = 100;

} // namespace

frmCompressProject::frmCompressProject(core::Environment& environment, project::ProjectFile_Class& project,
                                       QWidget* parent)
    : QDialog(parent)
    , m_compression(environment, project, *this)
    , m_source(new ElidedLabel(this))
    , m_destination(new ElidedLabel(this))
    , m_fileNumber(new QLabel(this))
    , m_progress(new controls::VUMeter_UserCtrl(this))
    , m_left(new QLabel(this))
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
        auto* label = new QLabel(caption, this);
        label->setGeometry(kMargin, top, kCaption, kLine);
        value->setGeometry(kMargin + kCaption, top, kInside - kCaption, kLine);
        top += kLine;
    };
    row("Source:", m_source);
    row("Dest:", m_destination);
    row("File:", m_fileNumber);
    row("Progress:", m_progress);
    m_progress->setGeometry(kMargin + kCaption - 5, top - kLine + 4, 220, 14);

    auto* cancel = new QPushButton("Cancel", this);
    cancel->setObjectName("Command1");
    cancel->setAutoDefault(false);
    const int lastLine = kSize.height() - kMargin - controls::theme::kControlHeight;
    m_left->setGeometry(kMargin, lastLine, kInside / 2, controls::theme::kControlHeight);
    cancel->setGeometry(kMargin + kInside - 86, lastLine, 86, controls::theme::kControlHeight);
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
    m_fileNumber->setText(QString("%1/%2").arg(number).arg(total));
}

void frmCompressProject::Update(double file, double run)
{
    m_progress->SetValue(static_cast<std::int32_t>(file * kBarMax));
    m_left->setText(TimeLeftText(m_elapsed.elapsed(), run));
}

} // namespace velmora::app
