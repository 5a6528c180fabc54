#pragma once

#include "core/Ports.h"

#include <QDialog>
#include <string>
#include <string_view>

class QLabel;
class QPushButton;

namespace velmora::app {

/// Asks what to do about an audio file that could not be loaded. `exec` answers with a `core::FileNotFoundAnswer`;
/// closing the dialog ignores the file.
class frmFileNotFound_DIALOG final : public QDialog {
public:
    /// `dialogs` outlives this.
    frmFileNotFound_DIALOG(core::FileDialogs& dialogs, std::string_view path, QWidget* parent);

    /// The file chosen in place of the missing one, in the internal form.
    const std::string& Replacement() const { return m_replacement; }

    void reject() override;

private:
    QPushButton* AddButton(const char* caption, const char* name);
    void Replace();

    core::FileDialogs& m_dialogs;
    std::string m_replacement;
};

/// The port behind it.
class QtFileNotFoundQuestion final : public core::FileNotFoundQuestion {
public:
    /// `dialogs` outlives this.
    explicit QtFileNotFoundQuestion(core::FileDialogs& dialogs)
        : m_dialogs(dialogs)
    {
    }

    core::FileNotFoundAnswer Ask(std::string_view path, std::string& replacement) override;

private:
    core::FileDialogs& m_dialogs;
};

} // namespace velmora::app
