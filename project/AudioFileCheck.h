#pragma once

#include "core/Files.h"
#include "core/Ports.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmora::project {

class ProjectFolder;

/// Looks for the audio files of a project that is being loaded, each path once however many events name it: the disk
/// is asked once, and so is the user. No audio is opened.
class AudioFileCheck {
public:
    /// `question` null: nobody is asked, and what is missing is only noted.
    AudioFileCheck(const core::Files& files, const ProjectFolder& folder, core::FileNotFoundQuestion* question);

    /// False when the file of `filePath` is missing and stays so. The user may name another one, which `filePath` is
    /// then.
    bool Find(std::string& filePath);

    /// What stayed missing, each path once, absolute where it can be.
    const std::vector<std::string>& Missing() const { return m_missing; }
    /// The user named another file for one that was missing.
    bool Replaced() const { return m_replaced; }

private:
    std::optional<std::string> Search(const std::string& filePath);

    const core::Files& m_files;
    const ProjectFolder& m_folder;
    core::FileNotFoundQuestion* m_question;
    /// By path as it stands in the project: the path to use, or nothing for a file that stays missing.
    std::unordered_map<std::string, std::optional<std::string>> m_found;
    std::vector<std::string> m_missing;
    bool m_replaced = false;
};

} // namespace velmora::project
