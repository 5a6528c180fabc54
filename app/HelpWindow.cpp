#include "app/HelpWindow.h"

#include <QFileInfo>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace velmora::app {

HelpWindow::HelpWindow(QWidget* parent)
    : QDialog(parent)
    , m_browser(new QTextBrowser(this))
{
    setWindowTitle("Velmora help");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_browser);
    m_browser->setAccessibleName("Help page");
    resize(560, 520);
}

bool HelpWindow::ShowPage(const QString& file)
{
    if (!QFileInfo::exists(file)) {
        return false;
    }
    m_browser->setSource(QUrl::fromLocalFile(file));
    show();
    raise();
    activateWindow();
    return true;
}

} // namespace velmora::app
