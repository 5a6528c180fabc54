#pragma once

#include "audio/TakeJournal.h"
#include "core/Files.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velmora::audio {

/// The takes of this session that have become clips, and their journals: one stands for as long as the document has
/// the take's clip and the project's file does not.
class TakeBook {
public:
    /// The names of the audio folder's files that clips play.
    using Names = std::unordered_set<std::string>;

    explicit TakeBook(core::Files& files)
        : m_files(files)
    {
    }

    /// A take in the audio folder whose journal stands.
    void Add(std::string name, TakeJournal journal);
    bool Empty() const { return m_takes.empty(); }
    /// Something was undone or redone: a take that was dropped needs no journal, one that came back does.
    void Restored(std::string_view folder, const Names& used);
    /// The project was saved. `folders` are where journals may stand: after a save under a new name, both.
    void Saved(const std::vector<std::string>& folders, const Names& used);

private:
    struct Take {
        std::string name;
        TakeJournal journal;
        /// The project's file has the clip.
        bool saved = false;
    };

    core::Files& m_files;
    std::vector<Take> m_takes;
};

} // namespace velmora::audio
