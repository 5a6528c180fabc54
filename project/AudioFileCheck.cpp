#include "project/AudioFileCheck.h"

#include "project/internal/ProjectFolder.h"

namespace velmora::project {

AudioFileCheck::AudioFileCheck(const core::Files& files, const ProjectFolder& folder,
                               core::FileNotFoundQuestion* question)
    : m_files(files)
    , m_folder(folder)
    , m_question(question)
{
}

bool AudioFileCheck::Find(std::string& filePath)
{
    auto known = m_found.find(filePath);
    if (known == m_found.end()) {
        known = m_found.emplace(filePath, Search(filePath)).first;
    }
    if (!known->second) {
        return false;
    }
    filePath = *known->second;
    return true;
}

std::optional<std::string> AudioFileCheck::Search(const std::string& filePath)
{
    std::string candidate = filePath;
    for (;;) {
        const std::string absolute = m_folder.FixAudioFilePath(candidate);
        if (!absolute.empty() && m_files.FileExists(absolute)) {
            m_replaced = m_replaced || candidate != filePath;
            return candidate;
        }
        const std::string& shown = absolute.empty() ? candidate : absolute;
        std::string replacement;
        switch (m_question ? m_question->Ask(shown, replacement) : core::FileNotFoundAnswer::Ignore) {
        case core::FileNotFoundAnswer::Retry:
            break;
        case core::FileNotFoundAnswer::Replace:
            candidate = replacement;
            break;
        case core::FileNotFoundAnswer::Ignore:
            m_missing.push_back(shown);
            return std::nullopt;
        }
    }
}

} // namespace velmora::project
