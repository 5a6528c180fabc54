#include "project/LockedInterface.h"

#include "project/ProjectFile_Class.h"

namespace velmora::project {

LockedInterface::LockedInterface(ProjectFile_Class& project)
    : m_project(project)
{
    m_project.Environment().ports.views.EnableMainWindow(false);
    m_project.FX_DisableSetupForms();
}

LockedInterface::~LockedInterface()
{
    m_project.FX_EnableSetupForms();
    m_project.Environment().ports.views.EnableMainWindow(true);
}

} // namespace velmora::project
