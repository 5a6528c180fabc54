#include "core/Configuration.h"

#include "core/TextUtilities.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

namespace velmora::core {
namespace {

constexpr std::string_view kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";
constexpr std::int64_t kMaxConfigurationBytes = std::int64_t{1} << 20;
constexpr std::int32_t kDeviceFreq = 44100;

} // namespace

std::string Configuration::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Config");
    writer.Add_Element("BassDevice_Freq", BassDevice_Freq);
    writer.Add_Element("BassRecDevice_Freq", BassRecDevice_Freq);
    writer.Add_Element("BassBuffer_LengthMS", BassBuffer_LengthMS);
    writer.Add_Element("Global_FirstRun", Global_FirstRun);
    writer.Add_Element("Global_InputDevice", Global_InputDevice);
    writer.Add_Element("Global_OutputDevice", Global_OutputDevice);
    writer.Add_Element("Global_Rec_RecordAsMono", Global_Rec_RecordAsMono);
    writer.Add_Element("Playback_Jumpback", Playback_Jumpback);
    writer.Add_Element("EncWaveFormat.freq", EncWaveFormat.freq);
    writer.Add_Element("EncWaveFormat.nChannels", EncWaveFormat.nChannels);
    writer.Add_Element("EncWMAFormat.freq", EncWMAFormat.freq);
    writer.Add_Element("EncWMAFormat.nChannels", EncWMAFormat.nChannels);
    writer.Add_Element("EncWMAFormat.bitrate", EncWMAFormat.bitrate);
    if (Recording_OffsetMS != 0) {
        writer.Add_Element("Recording_OffsetMS", Recording_OffsetMS);
    }
    return std::string(kHeader) + writer.GetXMLString();
}

void Configuration::LoadXMLData(std::string_view xml)
{
    std::string text(xml);
    StripXMLHeader(text);
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(std::move(text));
    const Configuration standard;
    const auto read = [&reader](std::string_view key, auto& value, auto fallback) {
        reader.ReadElement(key, value, fallback);
    };
    read("BassDevice_Freq", BassDevice_Freq, standard.BassDevice_Freq);
    read("BassRecDevice_Freq", BassRecDevice_Freq, standard.BassRecDevice_Freq);
    read("BassBuffer_LengthMS", BassBuffer_LengthMS, standard.BassBuffer_LengthMS);
    read("Global_FirstRun", Global_FirstRun, standard.Global_FirstRun);
    read("Global_InputDevice", Global_InputDevice, standard.Global_InputDevice);
    read("Global_OutputDevice", Global_OutputDevice, standard.Global_OutputDevice);
    read("Global_Rec_RecordAsMono", Global_Rec_RecordAsMono, standard.Global_Rec_RecordAsMono);
    read("Playback_Jumpback", Playback_Jumpback, standard.Playback_Jumpback);
    read("EncWaveFormat.freq", EncWaveFormat.freq, standard.EncWaveFormat.freq);
    read("EncWaveFormat.nChannels", EncWaveFormat.nChannels, standard.EncWaveFormat.nChannels);
    read("EncWMAFormat.freq", EncWMAFormat.freq, standard.EncWMAFormat.freq);
    read("EncWMAFormat.nChannels", EncWMAFormat.nChannels, standard.EncWMAFormat.nChannels);
    read("EncWMAFormat.bitrate", EncWMAFormat.bitrate, standard.EncWMAFormat.bitrate);
    read("Recording_OffsetMS", Recording_OffsetMS, standard.Recording_OffsetMS);
    BassDevice_Freq = kDeviceFreq;
    BassRecDevice_Freq = kDeviceFreq;
}

bool Configuration::Save(Files& files, std::string_view path) const
{
    return files.WriteTextFile(path, GetXMLData());
}

void Configuration::Load(const Files& files, std::string_view path)
{
    LoadXMLData(files.ReadTextFile(path, kMaxConfigurationBytes));
}

} // namespace velmora::core
