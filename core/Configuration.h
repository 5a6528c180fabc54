#pragma once

#include "core/Files.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::core {

struct EncoderFormat {
    std::int32_t freq = 44100;
    std::int16_t nChannels = 2;
    std::int32_t bitrate = 128000;
};

/// The settings of `config.xml`, and the one amount beside them that is measured at the start of the device.
struct Configuration {
    std::int32_t BassDevice_Freq = 44100;
    std::int32_t BassRecDevice_Freq = 44100;
    /// Output buffer in ms; -1 takes the device's minimum.
    std::int16_t BassBuffer_LengthMS = -1;
    bool Global_FirstRun = true;
    std::int16_t Global_InputDevice = 0;
    std::int16_t Global_OutputDevice = -1;
    bool Global_Rec_RecordAsMono = false;
    /// What no software can measure of the way from the output to the input, in ms; added to where a take begins.
    std::int32_t Recording_OffsetMS = 0;
    std::int16_t Playback_Jumpback = 1;
    EncoderFormat EncWaveFormat;
    EncoderFormat EncWMAFormat;

    /// The device's own latency in ms, as it was when a take last began. Not stored.
    std::int32_t OutputLatencyMS = 0;

    std::string GetXMLData() const;
    /// What the text lacks takes its default; both sample rates are 44100 afterwards.
    void LoadXMLData(std::string_view xml);
    bool Save(Files& files, std::string_view path) const;
    void Load(const Files& files, std::string_view path);
};

} // namespace velmora::core
