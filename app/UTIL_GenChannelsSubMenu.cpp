#include "app/UTIL_GenChannelsSubMenu.h"

#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

namespace velmora::app {

UTIL_GenChannelsSubMenu::UTIL_GenChannelsSubMenu(const project::ProjectFile_Class& project)
    : m_project(project)
{
}

std::optional<UTIL_GenChannelsSubMenu::Item> UTIL_GenChannelsSubMenu::GetNextItem()
{
    const project::Channel_Class* channel = m_project.Chn_GetChannelObj_by_Index(m_next);
    if (channel == nullptr) {
        return std::nullopt;
    }
    if (!m_separated && m_next > 0 && m_next == m_project.Chn_GetMusicChannel_TotalN()) {
        m_separated = true;
        return Item{"-", 0};
    }
    ++m_next;
    const core::ClassID id = channel->ClassID();
    const bool selected = id == m_project.Selected_MusicChannel() || id == m_project.Selected_VoiceChannel();
    return Item{channel->Title + (selected ? " (selected)" : ""), id};
}

} // namespace velmora::app
