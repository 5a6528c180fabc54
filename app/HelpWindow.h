#pragma once

#include <QDialog>

class QTextBrowser;

namespace velmora::app {

/// Shows pages of the help, which are files beside the program.
class HelpWindow final : public QDialog {
public:
    explicit HelpWindow(QWidget* parent);

    /// False when there is no such page.
    bool ShowPage(const QString& file);

private:
    QTextBrowser* m_browser;
};

} // namespace velmora::app
