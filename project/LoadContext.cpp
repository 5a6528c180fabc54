#include "project/LoadContext.h"

namespace velmora::project {

LoadContext::LoadContext(core::ClassIdCounter& ids, AudioFileCheck* files)
    : m_ids(ids)
    , m_files(files)
{
}

core::ClassID LoadContext::Adopt(core::ClassID stated)
{
    if (core::CanAdoptID(stated) && m_seen.insert(static_cast<std::int32_t>(stated)).second) {
        m_ids.RiseAbove(stated);
        return stated;
    }
    return m_ids.Draw();
}

} // namespace velmora::project
