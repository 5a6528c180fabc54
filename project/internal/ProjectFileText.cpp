#include "project/internal/ProjectFileText.h"

#include "core/TextUtilities.h"
#include "persistence/Numbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

namespace velmora::project {
namespace {

constexpr double kFormatVersion = 1.0;

bool IsProjectText(std::string_view data)
{
    // The master tag alone decides; a reader of the beginning is enough to find it.
    constexpr std::size_t kBeginning = 1024;
    return persistence::UTIL_XMLRead::WithMasterTag(data.substr(0, kBeginning)).MasterTagIs("projectfile_class");
}

} // namespace

std::string WriteProjectFileText(std::string_view data)
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("AudioProject");
    writer.Add_Element("FileVersion", std::string_view("1.0"));
    writer.Add_RawElement("Data", data);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n" + writer.GetXMLString();
}

std::optional<std::string> ReadProjectFileText(std::string text, core::MessageBoxes& messages)
{
    core::StripXMLHeader(text);
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(std::move(text));
    if (!reader.MasterTagIs("audioproject")) {
        messages.Show("Error loading file", core::Icon::Exclamation);
        return std::nullopt;
    }
    std::string versionText = "-1";
    reader.ReadElement("FileVersion", versionText, "-1");
    const double version = persistence::NumericPrefix(versionText).value_or(0);
    if (version < kFormatVersion) {
        messages.Show("Invalid format version", core::Icon::Exclamation);
        return std::nullopt;
    }
    if (version > kFormatVersion) {
        messages.Show("Format version is newer than the one supported by this version\nof the software",
                      core::Icon::Exclamation);
        return std::nullopt;
    }
    const auto data = reader.ReadRaw("Data");
    if (!data || data->empty()) {
        messages.Show("File data is missing", core::Icon::Exclamation);
        return std::nullopt;
    }
    if (!IsProjectText(*data)) {
        messages.Show("Error loading file", core::Icon::Exclamation);
        return std::nullopt;
    }
    return std::string(*data);
}

} // namespace velmora::project
