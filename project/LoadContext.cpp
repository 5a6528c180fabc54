#include "project/LoadContext.h"

namespace velmora::project {

LoadContext::LoadContext(core::ClassIdCounter& ids, AudioFileCheck* files)
    : m_ids(ids)
    , m_files(files)
{
}

core::ClassID LoadContext::Adopt(core::ClassID stated)
{
    if (core::CanAdoptID(stated) && m_taken.insert(stated).second) {
        m_ids.RiseAbove(stated);
        return stated;
    }
    const core::ClassID fresh = m_ids.Draw();
    m_taken.insert(fresh);
    return fresh;
}

} // namespace velmora::project
