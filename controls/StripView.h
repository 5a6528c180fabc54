#pragma once

#include "controls/StripValues.h"
#include "core/ClassIds.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora::controls {

/// The buttons that choose a channel: four numbers, and one for the rest.
struct ChannelButtons {
    static constexpr std::int32_t kNumbers = 4;
    struct Button {
        bool exists = false;
        bool shown = false;
        bool recording = false;
    };
    std::array<Button, kNumbers + 1> buttons;
};

struct ChannelEntry {
    core::ClassID id = 0;
    std::string title;
};

/// Who draws what a `StripPresenter` tells. Setting a value here must send nothing back.
class StripView {
public:
    virtual ~StripView() = default;
    /// The project has no channel of this kind; nothing else is shown.
    virtual void ShowNoChannels(bool none) = 0;
    virtual void ShowTitle(const std::string& title) = 0;
    virtual void ShowValue(StripValue which, double value) = 0;
    virtual void ShowSwitch(StripSwitch which, bool on) = 0;
    virtual void ShowChannelButtons(const ChannelButtons& buttons) = 0;
    virtual void ShowPacks(const std::vector<std::string>& names) = 0;
    virtual void ShowPack(const std::string& name) = 0;
    /// Title of a music channel's file; "" for none.
    virtual void ShowFile(const std::string& title) = 0;
    /// 0..40.
    virtual void ShowLevel(std::int32_t level) = 0;
    virtual void ShowInputLevel(std::int32_t level) = 0;
};

} // namespace velmora::controls
