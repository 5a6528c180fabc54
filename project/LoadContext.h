#pragma once

#include "core/ClassIds.h"

#include <cstdint>
#include <unordered_set>

namespace velmora::project {

class AudioFileCheck;

/// What one load carries from object to object: which ids the text brought, where audio files are looked for, and
/// whether all of the text was taken.
class LoadContext {
public:
    /// `files` null: audio files are not looked for.
    explicit LoadContext(core::ClassIdCounter& ids, AudioFileCheck* files = nullptr);

    AudioFileCheck* Files() const { return m_files; }

    /// The id to take for the `stated` one: itself, and no later id equals it; or a fresh one if it cannot be
    /// adopted or is taken in this load already.
    core::ClassID Adopt(core::ClassID stated);

    /// Something in the text was missing, invalid or dropped.
    void CountLoss() { ++m_losses; }
    std::int32_t Losses() const { return m_losses; }

private:
    core::ClassIdCounter& m_ids;
    AudioFileCheck* m_files;
    std::unordered_set<core::ClassID> m_taken;
    std::int32_t m_losses = 0;
};

} // namespace velmora::project
