#include "app/UTIL_OpenSaveDialog_Class.h"

#include "app/QtText.h"
#include "core/Paths.h"
#include "core/TextUtilities.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <utility>

namespace velmora::app {

void UTIL_OpenSaveDialog_Class::AddFileType(std::string_view Extension, std::string_view Description)
{
    QStringList patterns = ToQt(Extension).split(';', Qt::SkipEmptyParts);
    patterns.replaceInStrings("*.*", "*");
    if (m_filters.isEmpty() && !patterns.isEmpty()) {
        m_firstEnding = FromQt(patterns.front().section('.', 1));
    }
    m_filters << ToQt(Description) + " (" + patterns.join(' ') + ")";
}

std::string UTIL_OpenSaveDialog_Class::OpenFile_Dialog(std::string_view WindowTitle, QWidget* hwnd)
{
    QFileDialog dialog(hwnd, ToQt(WindowTitle));
    dialog.setFileMode(QFileDialog::ExistingFile);
    return Run(dialog);
}

std::string UTIL_OpenSaveDialog_Class::SaveFile_Dialog(std::string_view WindowTitle, QWidget* hwnd,
                                                       std::string_view suggestion)
{
    QFileDialog dialog(hwnd, ToQt(WindowTitle));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(ToQt(m_firstEnding));
    const std::string name = core::FileNameOfPath(suggestion);
    if (name != suggestion) {
        folder = core::FolderOfPath(suggestion);
    }
    if (!name.empty()) {
        dialog.selectFile(ToQt(core::PosixName(name)));
    }
    return Run(dialog);
}

std::string UTIL_OpenSaveDialog_Class::Run(QFileDialog& dialog)
{
    QString start = ToQt(core::PosixPath(folder));
    if (start.isEmpty() || !QDir(start).exists()) {
        start = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    }
    dialog.setDirectory(start);
    dialog.setNameFilters(m_filters);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    std::string path = core::InternalPath(FromQt(dialog.selectedFiles().front()));
    folder = core::FolderOfPath(path);
    return path;
}

std::optional<std::string> QtFileDialogs::Open(std::string_view caption, const std::vector<core::FileType>& types)
{
    UTIL_OpenSaveDialog_Class dialog = Dialog(types);
    return Note(dialog, dialog.OpenFile_Dialog(caption, QApplication::activeWindow()));
}

std::optional<std::string> QtFileDialogs::Save(std::string_view caption, const std::vector<core::FileType>& types,
                                               std::string_view suggestion)
{
    UTIL_OpenSaveDialog_Class dialog = Dialog(types);
    return Note(dialog, dialog.SaveFile_Dialog(caption, QApplication::activeWindow(), suggestion));
}

UTIL_OpenSaveDialog_Class QtFileDialogs::Dialog(const std::vector<core::FileType>& types) const
{
    UTIL_OpenSaveDialog_Class dialog;
    dialog.folder = lastFolder;
    for (const core::FileType& type : types) {
        dialog.AddFileType(type.patterns, type.description);
    }
    return dialog;
}

std::optional<std::string> QtFileDialogs::Note(const UTIL_OpenSaveDialog_Class& dialog, std::string path)
{
    if (path.empty()) {
        return std::nullopt;
    }
    lastFolder = dialog.folder;
    return path;
}

} // namespace velmora::app
