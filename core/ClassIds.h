#pragma once

namespace velmora::core {

/// Identity of an object of the document: a whole number in a 64-bit float, drawn from one counter per project.
using ClassID = double;

/// The counter that ids are drawn from. It restarts with each project and rises above the ids of what is loaded.
class ClassIdCounter {
public:
    /// The next id; ids drawn from one counter differ.
    ClassID Draw();
    /// Starts over at 0, just before a new project is made.
    void Reset() { m_next = 0; }
    /// Makes sure that no later id equals `id`. An id that is not finite is ignored.
    void RiseAbove(ClassID id);

private:
    ClassID m_next = 0;
};

} // namespace velmora::core
