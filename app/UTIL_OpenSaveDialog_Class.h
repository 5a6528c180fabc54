#pragma once

#include "core/Ports.h"

#include <QStringList>
#include <optional>
#include <string>
#include <string_view>

class QFileDialog;
class QWidget;

namespace velmora::app {

/// The platform's file dialog. Paths are in the internal form; "" is a cancel.
class UTIL_OpenSaveDialog_Class {
public:
    /// `Extension` is one pattern or several, parted by ";".
    void AddFileType(std::string_view Extension, std::string_view Description);
    /// Where the dialog begins; afterwards, where it ended.
    std::string folder;

    std::string OpenFile_Dialog(std::string_view WindowTitle, QWidget* hwnd);
    /// A name without an ending gets that of the first file type.
    std::string SaveFile_Dialog(std::string_view WindowTitle, QWidget* hwnd, std::string_view suggestion);

private:
    std::string Run(QFileDialog& dialog);

    QStringList m_filters;
    std::string m_firstEnding;
};

/// The port of the file dialogs. Remembers the last folder.
class QtFileDialogs final : public core::FileDialogs {
public:
    std::optional<std::string> Open(std::string_view caption, const std::vector<core::FileType>& types) override;
    std::optional<std::string> Save(std::string_view caption, const std::vector<core::FileType>& types,
                                    std::string_view suggestion) override;

    /// In the internal form; "" is the user's documents folder.
    std::string lastFolder;

private:
    UTIL_OpenSaveDialog_Class Dialog(const std::vector<core::FileType>& types) const;
    std::optional<std::string> Note(const UTIL_OpenSaveDialog_Class& dialog, std::string path);
};

} // namespace velmora::app
