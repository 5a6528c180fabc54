#include "core/ClassIds.h"

#include <algorithm>
#include <cmath>

namespace velmora::core {

bool CanAdoptID(ClassID id)
{
    return id >= 0 && id <= kGreatestAdoptedID && std::trunc(id) == id;
}

ClassID ClassIdCounter::Draw()
{
    return m_next++;
}

void ClassIdCounter::RiseAbove(ClassID id)
{
    if (CanAdoptID(id)) {
        m_next = std::max(m_next, id + 1);
    }
}

} // namespace velmora::core
