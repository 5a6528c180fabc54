#pragma once

#include <cstdint>

/// The numbers of all messages. What a message means and which fields it uses stands in docs/ARCHITECTURE.md and at
/// the classes that handle it.
namespace velmora::core {

// Project and channels
inline constexpr std::int32_t Msg_Refresh = 1000;
inline constexpr std::int32_t Msg_SoloChanged = 1100;
inline constexpr std::int32_t Msg_AddMusicChannel = 2000;
inline constexpr std::int32_t Msg_AddVoiceChannel = 2100;
inline constexpr std::int32_t Msg_DeleteChannel = 2200;
inline constexpr std::int32_t Msg_ClearChannel = 2300;

// Channel properties
inline constexpr std::int32_t Msg_Channel_SetPan = 3000;
inline constexpr std::int32_t Msg_Channel_SetVolume = 3001;
inline constexpr std::int32_t Msg_Channel_SetPitch = 3002;
inline constexpr std::int32_t Msg_Channel_SetVoiceRemoval = 3003;
inline constexpr std::int32_t Msg_Channel_SetGain = 3004;
inline constexpr std::int32_t Msg_Channel_SetMute = 3005;
inline constexpr std::int32_t Msg_Channel_SetSolo = 3006;
inline constexpr std::int32_t Msg_Channel_SetTitle = 3007;
inline constexpr std::int32_t Msg_Channel_SetLive = 3050;
inline constexpr std::int32_t Msg_AllChannelsLiveOff = 3051;

// Effects
inline constexpr std::int32_t Msg_FX_Add = 3500;
inline constexpr std::int32_t Msg_FX_AddChannel = 3501;
inline constexpr std::int32_t Msg_FX_Delete = 3502;
inline constexpr std::int32_t Msg_FX_RemoveChannel = 3503;
inline constexpr std::int32_t Msg_FX_SetParams = 3504;
inline constexpr std::int32_t Msg_FX_SetEnabled = 3505;
inline constexpr std::int32_t Msg_FX_ChangePriority = 3506;
inline constexpr std::int32_t Msg_FX_SetChannelPan = 3507;
inline constexpr std::int32_t Msg_FX_SetChannelVolume = 3508;
inline constexpr std::int32_t Msg_FXPack_Load = 3600;
inline constexpr std::int32_t Msg_FXPack_Save = 3601;

// Selection
inline constexpr std::int32_t Msg_SelectVoiceChannel = 4001;
inline constexpr std::int32_t Msg_SelectMusicChannel = 4002;

// Events
inline constexpr std::int32_t Msg_AddEvent = 5000;
inline constexpr std::int32_t Msg_AddEvent_Wave = 5001;
inline constexpr std::int32_t Msg_DeleteEvent = 5002;
inline constexpr std::int32_t Msg_EventEdit_ResizeRight = 6000;
inline constexpr std::int32_t Msg_EventEdit_ResizeLeft = 6001;
inline constexpr std::int32_t Msg_EventEdit_Move = 6002;
inline constexpr std::int32_t Msg_EventEdit_MoveVertical = 6003;
inline constexpr std::int32_t Msg_EventEdit_Split = 6004;
inline constexpr std::int32_t Msg_EventEdit_SetGain = 6005;
inline constexpr std::int32_t Msg_EventEdit_SetFadeIn = 6006;
inline constexpr std::int32_t Msg_EventEdit_SetFadeOut = 6007;
inline constexpr std::int32_t Msg_EventEdit_Replace = 6008;
inline constexpr std::int32_t Msg_EventEdit_SetSelected = 6009;
inline constexpr std::int32_t Msg_EventEdit_Done = 6010;

// Transport, master and recording
inline constexpr std::int32_t Msg_Player_Play = 7000;
inline constexpr std::int32_t Msg_Player_Stop = 7001;
inline constexpr std::int32_t Msg_Player_SetRange = 7002;
inline constexpr std::int32_t Msg_Player_Tick = 7010;
inline constexpr std::int32_t Msg_Player_ReloadEvents = 7020;
inline constexpr std::int32_t Msg_Master_SetVolume = 7500;
inline constexpr std::int32_t Msg_Master_SetMute = 7501;
inline constexpr std::int32_t Msg_Recorder_Start = 7700;
inline constexpr std::int32_t Msg_Recorder_Stop = 7701;

// Marks, clipboard, undo, keyboard
inline constexpr std::int32_t Msg_AddMark = 8000;
inline constexpr std::int32_t Msg_DeleteMark = 8001;
inline constexpr std::int32_t Msg_MarkChanged = 8002;
inline constexpr std::int32_t Msg_ClipboardChanged = 9000;
inline constexpr std::int32_t Msg_UndoRestored = 10000;
inline constexpr std::int32_t Msg_UndoListChanged = 10001;
inline constexpr std::int32_t Msg_KeyboardFocusLost = 11000;
inline constexpr std::int32_t Msg_KeyboardFocusGot = 11001;

// Metronome
inline constexpr std::int32_t Msg_Metronome_Enable = 12000;
inline constexpr std::int32_t Msg_Metronome_SetOnPlayback = 12001;
inline constexpr std::int32_t Msg_Metronome_SetOnRecording = 12002;
inline constexpr std::int32_t Msg_Metronome_SetBPM = 12003;
inline constexpr std::int32_t Msg_Metronome_SetFile = 12004;
inline constexpr std::int32_t Msg_Metronome_SetVolume = 12005;

// Timeline editor
inline constexpr std::int32_t Msg_EvEd_Progress = 100010;
inline constexpr std::int32_t Msg_EvEd_ProgressEnd = 100011;
inline constexpr std::int32_t Msg_EvEd_ViewPosChanged = 100013;
inline constexpr std::int32_t Msg_EvEd_SetViewPos = 100014;
inline constexpr std::int32_t Msg_EvEd_ShowEventLabel = 100015;

} // namespace velmora::core
