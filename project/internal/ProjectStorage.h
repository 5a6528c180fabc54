#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"
#include "persistence/SharedText.h"
#include "project/OpenedProject.h"
#include "project/internal/ProjectFolder.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velmora::project {

class ChannelRegistry;
class FolderTransfer;
class ProjectFile_Class;

/// A project's life on disk: making, loading and saving it, and what a load left out.
class ProjectStorage {
public:
    ProjectStorage(ProjectFile_Class& project, ChannelRegistry& channels);

    bool Create();
    bool Load(OpenedProject opened, bool ignoreMissing);
    bool Save(std::string_view path);
    void DeleteUnusedFiles();
    std::unordered_set<std::string> FilesInUse() const;

    persistence::SharedText GetSharedXML() const;
    /// `id` takes the id of the text when `loadIDs` is set.
    bool LoadXMLData(std::string_view xml, bool loadIDs, bool loadRecorder, bool checkFiles, core::ClassID& id);

    const ProjectFolder& Folder() const { return m_folder; }
    const std::string& ProjectPath() const { return m_projectPath; }
    bool IsNewProject() const { return m_isNewProject; }
    const std::vector<std::string>& MissingFiles() const { return m_missingFiles; }

private:
    /// Takes are made in the new folder before the lock of the old one goes.
    void EnterFolder(const std::string& folder, std::unique_ptr<core::FileLock> lock);
    bool ReadInto(const OpenedProject& opened, bool ignoreMissing);
    bool WriteWithCopy(const std::string& path, const std::string& text, FolderTransfer& transfer);
    bool ReportNotWritten() const;
    /// A take's file cannot move while it grows.
    void EndTake() const;
    void Send(std::int32_t msgID) const;
    std::vector<std::string> ClipPaths() const;

    ProjectFile_Class& m_project;
    ChannelRegistry& m_channels;
    core::Environment& m_environment;
    ProjectFolder m_folder;
    std::string m_projectPath;
    std::vector<std::string> m_missingFiles;
    OpenMode m_mode = OpenMode::Edit;
    bool m_created = false;
    bool m_isNewProject = false;
    /// Nothing was missing, invalid or dropped when the project was loaded.
    bool m_whole = true;
};

} // namespace velmora::project
