#pragma once

namespace velmora::core {

/// Identity of an object of the document: a whole number in a 64-bit float, drawn from one counter per project.
using ClassID = double;

/// Ids are cut to 32 bits where they name a sender or an engine channel; a loaded id above this is not adopted.
inline constexpr ClassID kGreatestAdoptedID = 1e9;

/// Whether an object that is loaded can keep `id`: a whole number in 0..`kGreatestAdoptedID`. Others get a fresh one.
bool CanAdoptID(ClassID id);

/// The counter that ids are drawn from. It restarts with each project and rises above the ids of what is loaded.
class ClassIdCounter {
public:
    /// The next id; ids drawn from one counter differ.
    ClassID Draw();
    /// Starts over at 0, just before a new project is made.
    void Reset() { m_next = 0; }
    /// Makes sure that no later id equals `id`. An id that cannot be adopted is ignored.
    void RiseAbove(ClassID id);

private:
    ClassID m_next = 0;
};

} // namespace velmora::core
