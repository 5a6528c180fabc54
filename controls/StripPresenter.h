#pragma once

#include "controls/StripMeters.h"
#include "controls/StripPacks.h"
#include "controls/StripView.h"
#include "core/ClassIds.h"
#include "core/MsgHandlerClass.h"
#include "core/Units.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::controls {

/// A strip without its window: shows the selected channel of one kind on a `StripView`, turns what the user does into
/// messages, and follows what comes back. Only the model's values are ever shown, so a change that the document
/// refuses is seen to be refused. Interface thread only.
class StripPresenter {
public:
    /// Asks where a file goes into a channel that holds music already; nothing is a cancel. ms.
    using PlaceQuestion = std::function<std::optional<double>(core::ClassID channel, const std::string& path)>;

    /// `view` outlives this.
    StripPresenter(StripKind kind, StripView& view);
    ~StripPresenter();
    StripPresenter(const StripPresenter&) = delete;
    StripPresenter& operator=(const StripPresenter&) = delete;

    /// A project begins; listens on its bus. The project's bus must be there.
    void Initialize_Class(project::ProjectFile_Class& project);
    /// The project is about to end. Until the next begins, nothing that the user does has an effect.
    void Release();

    StripKind Kind() const { return m_kind; }
    /// The unset value for none.
    core::ClassID SelectedChannelID() const { return m_selected; }

    /// The user moved a slider: one undo step for a run of moves on one channel, then the message. Nothing for the
    /// value that the channel has.
    void ChangeValue(StripValue which, double value);
    /// The user clicked a switch; without an undo step.
    void Toggle(StripSwitch which);
    /// The channel at a place of the list, from 0.
    void SelectChannel(std::int32_t index);
    void SelectChannelID(core::ClassID id);
    /// The channels behind the fourth.
    std::vector<ChannelEntry> MoreChannels() const;
    /// Asks for a new title.
    void Rename();
    void SetupFX();
    /// By its place in the list last shown.
    void ChoosePack(std::size_t index);
    void SavePack();
    /// Asks for a file and puts it on the channel.
    void LoadMusicFile();
    void SetPlaceQuestion(PlaceQuestion question) { m_askPlace = std::move(question); }
    /// A control that takes text got the keyboard, or lost it.
    void KeyboardFocus(bool got);

private:
    void MsgHandler_MsgReceived(std::int32_t msgID, core::MsgParametersClass& params);
    void ChannelMessage(std::int32_t msgID);
    /// Buttons, selection and all values.
    void ReadEverything();
    void ReadValues();
    void ShowButtons();
    void ShowPack();
    void ShowFile();
    void Select(core::ClassID id);
    project::Channel_Class* Channel() const;
    project::Channel_Class* ChannelAt(std::int32_t index) const;
    std::int32_t ChannelCount() const;
    /// What is being recorded on the channel shown; 0 for nothing.
    std::uint32_t InputStream() const;
    void Send(std::int32_t msgID, core::MsgParametersClass& params) const;
    void SendValue(std::int32_t msgID, double value) const;

    const StripKind m_kind;
    StripView& m_view;
    project::ProjectFile_Class* m_project = nullptr;
    core::ClassID m_classID = 0;
    std::shared_ptr<core::MsgHandlerClass> m_handler;
    core::ClassID m_selected = core::kUnsetFloat;
    core::ClassID m_recording = core::kUnsetFloat;
    std::optional<StripPacks> m_packs;
    std::optional<StripMeters> m_meters;
    PlaceQuestion m_askPlace;
};

} // namespace velmora::controls
