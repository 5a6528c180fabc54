#pragma once

#include "core/Files.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace velmora::core {

/// The recent files, newest first, nine at most.
class LRU_Class {
public:
    static constexpr std::int32_t kSlots = 9;

    std::int32_t TotalItems() const;
    /// Puts a path first, without a duplicate; an empty path adds nothing.
    void AddFile(std::string_view Path);
    /// Drops files that no longer exist and closes the gaps.
    void CheckRemovedItems(const Files& files);
    /// "" for an index outside the list.
    std::string GetFile_ByIndex(std::int32_t I) const;

    std::string GetXMLData() const;
    void LoadXMLData(std::string_view xml);

private:
    void CloseGaps(const std::function<bool(const std::string&)>& isGap);

    std::array<std::string, kSlots> m_files;
};

} // namespace velmora::core
