#include "app/frmFileNotFound_DIALOG.h"

#include "app/QtText.h"
#include "app/ShownText.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora::app {
namespace {

constexpr int kMargin = 20;
constexpr int kWidth = 460;

int Result(core::FileNotFoundAnswer answer)
{
    return static_cast<int>(answer);
}

} // namespace

frmFileNotFound_DIALOG::frmFileNotFound_DIALOG(core::FileDialogs& dialogs, std::string_view path, QWidget* parent)
    : QDialog(parent)
    , m_dialogs(dialogs)
{
    setWindowTitle("Error loading file");
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    rows->setSpacing(kMargin / 2);
    rows->addWidget(new QLabel("The following file could not be loaded:", this));
    auto* label = new QLabel(ToQt(ShownPath(path)), this);
    label->setObjectName("Label2");
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    rows->addWidget(label);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    QPushButton* retry = AddButton("&Retry", "RetryButton");
    QPushButton* replace = AddButton("R&eplace", "ReplaceButton");
    QPushButton* ignore = AddButton("&Ignore", "IgnoreButton");
    for (QPushButton* button : {retry, replace, ignore}) {
        buttons->addWidget(button);
    }
    rows->addLayout(buttons);
    retry->setDefault(true);
    connect(retry, &QPushButton::clicked, this, [this] { done(Result(core::FileNotFoundAnswer::Retry)); });
    connect(replace, &QPushButton::clicked, this, [this] { Replace(); });
    connect(ignore, &QPushButton::clicked, this, [this] { reject(); });
    resize(kWidth, heightForWidth(kWidth));
}

QPushButton* frmFileNotFound_DIALOG::AddButton(const char* caption, const char* name)
{
    auto* button = new QPushButton(caption, this);
    button->setObjectName(name);
    return button;
}

void frmFileNotFound_DIALOG::reject()
{
    done(Result(core::FileNotFoundAnswer::Ignore));
}

void frmFileNotFound_DIALOG::Replace()
{
    const auto path = m_dialogs.Open("Load audio file", {{"Audio files", "*.wav;*.mp3;*.wma"},
                                                         {"Wave files", "*.wav"},
                                                         {"MP3 files", "*.mp3"},
                                                         {"Windows media audio files", "*.wma"},
                                                         {"All files", "*.*"}});
    if (path) {
        m_replacement = *path;
        done(Result(core::FileNotFoundAnswer::Replace));
    }
}

core::FileNotFoundAnswer QtFileNotFoundQuestion::Ask(std::string_view path, std::string& replacement)
{
    frmFileNotFound_DIALOG dialog(m_dialogs, path, QApplication::activeWindow());
    const auto answer = static_cast<core::FileNotFoundAnswer>(dialog.exec());
    replacement = dialog.Replacement();
    return answer;
}

} // namespace velmora::app
