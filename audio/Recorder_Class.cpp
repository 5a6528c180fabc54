#include "audio/Recorder_Class.h"

#include "audio/internal/TakeBook.h"
#include "core/MsgHandlerClass.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/ProjectFile_Class.h"

#include <utility>

namespace velmora::audio {
namespace {

constexpr std::int32_t kPriority = 90;
constexpr std::int32_t kLastName = 10'000;

} // namespace

Recorder_Class::Recorder_Class(core::Environment& environment, project::ProjectFile_Class& project)
    : m_environment(environment)
    , m_project(project)
    , m_classID(environment.ids.Draw())
    , m_msgHandler(std::make_shared<core::MsgHandlerClass>(
          environment.ids, [this](std::int32_t /*senderID*/, std::int32_t msgID,
                                  core::MsgParametersClass& params) { MsgHandler_MsgReceived(msgID, params); }))
    , m_takes(std::make_unique<TakeBook>(environment.files))
{
    project.MsgSender->Add_MsgHandlerOBJ(kPriority, m_msgHandler);
}

Recorder_Class::~Recorder_Class()
{
    m_msgHandler->Detach();
}

std::string Recorder_Class::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Recorder_Class");
    writer.Add_Element("recordCounter", m_recordCounter);
    return writer.GetXMLString();
}

bool Recorder_Class::LoadXMLData(std::string_view XMLData)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XMLData);
    if (!reader.MasterTagIs("recorder_class")) {
        return false;
    }
    reader.ReadElement("recordCounter", m_recordCounter, 1);
    return true;
}

void Recorder_Class::MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& /*Params*/)
{
    if (MsgID == core::Msg_UndoRestored && !m_takes->Empty()) {
        m_takes->Restored(ProjectFolder, m_project.util_AudioFilesInUse());
    }
}

std::string Recorder_Class::RecordFileName() const
{
    for (std::int32_t n = 0; n <= kLastName; ++n) {
        std::string path =
            ProjectFolder + "\\a" + std::to_string(n) + "- Record " + std::to_string(m_recordCounter) + ".wav";
        if (!m_environment.files.FileExists(path)) {
            return path;
        }
    }
    return {};
}

void Recorder_Class::TakeAdded(std::string name, TakeJournal journal)
{
    m_takes->Add(std::move(name), std::move(journal));
}

void Recorder_Class::ProjectSaved(const std::string& earlierFolder)
{
    if (!m_takes->Empty()) {
        m_takes->Saved({earlierFolder, ProjectFolder}, m_project.util_AudioFilesInUse());
    }
}

} // namespace velmora::audio
