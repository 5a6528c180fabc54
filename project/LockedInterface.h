#pragma once

namespace velmora::project {

class ProjectFile_Class;

/// Refuses input to the main window and the effects' dialogs for as long as it lives.
class LockedInterface {
public:
    explicit LockedInterface(ProjectFile_Class& project);
    ~LockedInterface();
    LockedInterface(const LockedInterface&) = delete;
    LockedInterface& operator=(const LockedInterface&) = delete;

private:
    ProjectFile_Class& m_project;
};

} // namespace velmora::project
