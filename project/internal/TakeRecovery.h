#pragma once

#include "core/Ports.h"

#include <string>
#include <string_view>
#include <vector>

namespace velmora::project {

class Channel_Class;
class ProjectFile_Class;

/// Finds takes that a crash cut off, or that were never saved, by their journals, and asks what becomes of them. No
/// answer loses a file: what is refused goes to the trash.
class TakeRecovery {
public:
    explicit TakeRecovery(ProjectFile_Class& project);

    /// Those in the project's own folder, once it is loaded.
    void OfferOwn();
    /// Those of new projects that were never saved and that nobody holds, to the present new project.
    void OfferAbandoned();

private:
    struct Found;

    std::vector<Found> FindIn(const std::string& folder) const;
    core::Answer Ask(std::string_view opening, const std::vector<Found>& takes, std::string_view question) const;
    void OfferAbandoned(const std::string& folder);
    bool Add(const Found& take);
    bool CopyAndAdd(const Found& take);
    void Refuse(const std::vector<Found>& takes);
    const Channel_Class& ChannelFor(const Found& take) const;

    ProjectFile_Class& m_project;
};

} // namespace velmora::project
