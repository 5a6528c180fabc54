#include "audio/internal/TakeBook.h"

#include <utility>

namespace velmora::audio {
namespace {

std::string Inside(std::string_view folder, std::string_view name)
{
    return std::string(folder).append("\\").append(name);
}

} // namespace

void TakeBook::Add(std::string name, TakeJournal journal)
{
    m_takes.push_back({std::move(name), std::move(journal)});
}

void TakeBook::Restored(std::string_view folder, const Names& used)
{
    for (const Take& take : m_takes) {
        const std::string path = Inside(folder, take.name);
        if (!used.contains(take.name)) {
            TakeJournal::Remove(m_files, path);
        } else if (!take.saved && !m_files.FileExists(TakeJournal::PathFor(path))) {
            take.journal.Write(m_files, path);
        }
    }
}

void TakeBook::Saved(const std::vector<std::string>& folders, const Names& used)
{
    for (Take& take : m_takes) {
        take.saved = used.contains(take.name);
        for (const std::string& folder : folders) {
            TakeJournal::Remove(m_files, Inside(folder, take.name));
        }
    }
}

} // namespace velmora::audio
