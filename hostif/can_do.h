// The capability texts exchanged through the canDo requests: HostCanDos for what an effect asks
// of the host (AudioEffectX::canHostDo), PlugCanDos for what a host asks of the effect
// (AudioEffectX::canDo). A text that appears in both tables is one string, so the two entries
// compare equal as pointers as well as by content.
#pragma once

namespace can_do_text {
inline constexpr char sendVstEvents[] = "sendVstEvents";
inline constexpr char sendVstMidiEvent[] = "sendVstMidiEvent";
inline constexpr char receiveVstEvents[] = "receiveVstEvents";
inline constexpr char receiveVstMidiEvent[] = "receiveVstMidiEvent";
inline constexpr char offline[] = "offline";
}  // namespace can_do_text

namespace HostCanDos {
inline constexpr const char* canDoSendVstEvents = can_do_text::sendVstEvents;
inline constexpr const char* canDoSendVstMidiEvent = can_do_text::sendVstMidiEvent;
inline constexpr const char* canDoSendVstTimeInfo = "sendVstTimeInfo";
inline constexpr const char* canDoReceiveVstEvents = can_do_text::receiveVstEvents;
inline constexpr const char* canDoReceiveVstMidiEvent = can_do_text::receiveVstMidiEvent;
inline constexpr const char* canDoReportConnectionChanges = "reportConnectionChanges";
inline constexpr const char* canDoAcceptIOChanges = "acceptIOChanges";
inline constexpr const char* canDoSizeWindow = "sizeWindow";
inline constexpr const char* canDoOffline = can_do_text::offline;
inline constexpr const char* canDoOpenFileSelector = "openFileSelector";
inline constexpr const char* canDoCloseFileSelector = "closeFileSelector";
inline constexpr const char* canDoStartStopProcess = "startStopProcess";
inline constexpr const char* canDoShellCategory = "shellCategory";
inline constexpr const char* canDoSendVstMidiEventFlagIsRealtime = "sendVstMidiEventFlagIsRealtime";
}  // namespace HostCanDos

namespace PlugCanDos {
inline constexpr const char* canDoSendVstEvents = can_do_text::sendVstEvents;
inline constexpr const char* canDoSendVstMidiEvent = can_do_text::sendVstMidiEvent;
inline constexpr const char* canDoReceiveVstEvents = can_do_text::receiveVstEvents;
inline constexpr const char* canDoReceiveVstMidiEvent = can_do_text::receiveVstMidiEvent;
inline constexpr const char* canDoReceiveVstTimeInfo = "receiveVstTimeInfo";
inline constexpr const char* canDoOffline = can_do_text::offline;
inline constexpr const char* canDoMidiProgramNames = "midiProgramNames";
inline constexpr const char* canDoBypass = "bypass";
}  // namespace PlugCanDos
