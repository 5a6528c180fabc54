#include "core/LRU_Class.h"

#include "core/TextUtilities.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <algorithm>

namespace velmora::core {
namespace {

std::string SlotName(std::size_t index)
{
    return "File" + std::to_string(index);
}

} // namespace

std::int32_t LRU_Class::TotalItems() const
{
    return static_cast<std::int32_t>(std::ranges::find(m_files, "") - m_files.begin());
}

void LRU_Class::AddFile(std::string_view Path)
{
    const std::string path(Trim(Path));
    if (path.empty()) {
        return;
    }
    // What stood before the path, or before the ninth, moves down by one.
    const auto last = std::find(m_files.begin(), m_files.end() - 1, path);
    std::move_backward(m_files.begin(), last, last + 1);
    m_files.front() = path;
}

void LRU_Class::CheckRemovedItems(const Files& files)
{
    CloseGaps([&files](const std::string& path) { return path.empty() || !files.FileExists(path); });
}

std::string LRU_Class::GetFile_ByIndex(std::int32_t I) const
{
    return I >= 0 && I < kSlots ? m_files[static_cast<std::size_t>(I)] : std::string{};
}

std::string LRU_Class::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("LRU");
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (!m_files[i].empty()) {
            writer.Add_Element(SlotName(i), m_files[i]);
        }
    }
    return writer.GetXMLString();
}

void LRU_Class::LoadXMLData(std::string_view xml)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(xml);
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        m_files[i].clear();
        reader.ReadElement(SlotName(i), m_files[i], "");
    }
    CloseGaps([](const std::string& path) { return path.empty(); });
}

void LRU_Class::CloseGaps(const std::function<bool(const std::string&)>& isGap)
{
    const auto end = std::remove_if(m_files.begin(), m_files.end(), isGap);
    std::fill(end, m_files.end(), std::string{});
}

} // namespace velmora::core
