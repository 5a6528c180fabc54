#pragma once

#include "project/Undo_Class.h"
#include "tests/project/ProjectFixture.h"

#include <cstdint>
#include <random>
#include <set>
#include <string>

namespace velmora::project {

/// The program without a window, from its settings to its end, and a user who edits at random while it plays.
class LiveProject : public ProjectTest {
public:
    explicit LiveProject(std::uint32_t seed = 1);

    /// A new project of two sounding clips, a second chain of effects and the metronome on, saved and loaded again.
    void Open();
    /// One edit by message, with its undo step.
    void Edit();
    /// Returns when playback has come `ms` further; a failure if it does not within a minute.
    void Hear(std::int32_t ms);

    /// The engine's clips, and what they should be. Those of a deleted channel stay, unheard, until the next reload and
    /// are left out.
    std::set<std::string> EngineClips() const;
    std::set<std::string> ModelClips() const;

    std::string Text() const { return m_project->GetXMLData(); }
    using ProjectTest::m_environment;
    using ProjectTest::m_project;
    using ProjectTest::Send;

private:
    void TestBody() override {}

    std::mt19937 m_random;
};

} // namespace velmora::project
