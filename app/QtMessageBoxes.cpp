#include "app/QtMessageBoxes.h"

#include "app/QtText.h"
#include "app/ShownText.h"
#include "controls/Drawing.h"
#include "controls/Theme.h"

#include <QApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>

namespace velmora::app {
namespace {

constexpr int kInputWidth = 388;
/// Of a message and its mark.
constexpr int kLeastWidth = 348;

QMessageBox::Icon QtIcon(core::Icon icon)
{
    switch (icon) {
    case core::Icon::Information:
        return QMessageBox::Information;
    case core::Icon::Exclamation:
        return QMessageBox::Warning;
    case core::Icon::Critical:
        return QMessageBox::Critical;
    case core::Icon::Question:
        return QMessageBox::Question;
    case core::Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons QtButtons(core::Buttons buttons)
{
    switch (buttons) {
    case core::Buttons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case core::Buttons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case core::Buttons::YesNo:
        break;
    }
    return QMessageBox::Yes | QMessageBox::No;
}

/// A round mark with a sign in the look's colours; none for a box without an icon.
QPixmap Mark(core::Icon icon)
{
    namespace theme = controls::theme;
    constexpr int kSize = 32;
    const double scale = qApp->devicePixelRatio();
    QPixmap mark(QSize(kSize, kSize) * scale);
    mark.setDevicePixelRatio(scale);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    const QRectF round(0, 0, kSize, kSize);
    const bool critical = icon == core::Icon::Critical;
    controls::FillRound(painter, round, kSize / 2.0, critical ? theme::Accent : theme::AccentDim);
    painter.setPen(critical ? theme::AccentInk : theme::AccentHi);
    painter.setFont(theme::Font(18, QFont::DemiBold));
    const char* sign = icon == core::Icon::Question ? "?" : icon == core::Icon::Information ? "i" : "!";
    controls::DrawLine(painter, round, Qt::AlignHCenter, sign);
    return mark;
}

int Run(core::Icon icon, std::string_view title, std::string_view text, QMessageBox::StandardButtons buttons,
        const std::string& note = {})
{
    QMessageBox box(QtIcon(icon), ToQt(title), ToQt(ShownText(text)), buttons, QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    if (icon != core::Icon::None) {
        box.setIconPixmap(Mark(icon));
    }
    if (!note.empty()) {
        box.setInformativeText(ToQt(ShownText(note)));
    }
    auto* rows = qobject_cast<QGridLayout*>(box.layout());
    rows->addItem(new QSpacerItem(kLeastWidth, 0), rows->rowCount(), 0, 1, rows->columnCount());
    return box.exec();
}

} // namespace

void QtMessageBoxes::Show(std::string_view text, core::Icon icon, std::string_view title)
{
    Run(icon, title, text, QMessageBox::Ok, icon == core::Icon::Information ? m_notes.information : m_notes.trouble);
}

core::Answer QtMessageBoxes::Ask(std::string_view text, core::Buttons buttons, core::Icon icon, std::string_view title)
{
    switch (Run(icon, title, text, QtButtons(buttons))) {
    case QMessageBox::Yes:
        return core::Answer::Yes;
    case QMessageBox::Ok:
        return core::Answer::Ok;
    case QMessageBox::No:
        return core::Answer::No;
    default:
        return buttons == core::Buttons::YesNo ? core::Answer::No : core::Answer::Cancel;
    }
}

void QtMessageBoxes::Beep()
{
    QApplication::beep();
}

std::optional<std::string> QtInputBox::Ask(std::string_view title, std::string_view prompt, std::string_view suggestion)
{
    QInputDialog box(QApplication::activeWindow());
    box.setWindowTitle(ToQt(title));
    box.setLabelText(ToQt(prompt));
    box.setTextValue(ToQt(suggestion));
    if (auto* label = box.findChild<QLabel*>()) {
        label->setFont(controls::theme::Font(11));
        QPalette colours = label->palette();
        colours.setColor(QPalette::WindowText, controls::theme::Text2);
        label->setPalette(colours);
    }
    box.resize(kInputWidth, box.sizeHint().height());
    if (box.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return FromQt(box.textValue());
}

} // namespace velmora::app
