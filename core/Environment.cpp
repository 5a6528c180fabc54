#include "core/Environment.h"

#include <utility>

namespace velmora::core {
namespace {

constexpr std::int64_t kMaxRecentFilesBytes = std::int64_t{1} << 20;

} // namespace

Environment::Environment(const Ports& thePorts, Files& theFiles)
    : ports(thePorts)
    , files(theFiles)
    , paths(thePorts.messages, thePorts.shellFolders, theFiles)
    , m_earlierFaultHandler(
          persistence::SetFaultHandler([&messages = thePorts.messages](std::string_view text) { messages.Show(text); }))
{
}

Environment::~Environment()
{
    persistence::SetFaultHandler(std::move(m_earlierFaultHandler));
}

void Environment::LoadSettings()
{
    const std::string folder = paths.GetPath("config");
    config.Load(files, folder + "\\config.xml");
    recent.LoadXMLData(files.ReadTextFile(folder + "\\lru.xml", kMaxRecentFilesBytes));
}

bool Environment::SaveSettings()
{
    const std::string folder = paths.GetPath("config");
    const bool configSaved = config.Save(files, folder + "\\config.xml");
    const bool recentSaved = files.WriteTextFile(folder + "\\lru.xml", recent.GetXMLData());
    return configSaved && recentSaved;
}

} // namespace velmora::core
