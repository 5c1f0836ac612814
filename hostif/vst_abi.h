// The VST 2.4 boundary: the record a host holds, the function types it calls through, the request
// numbers both sides exchange and the records passed by pointer. Everything here is layout and
// published numbers; the behaviour lives in AudioEffect and AudioEffectX.
//
// Two forms: the default 64-bit one, where pointer-sized fields, the dispatcher's and the host
// callback's `value` and result widen to 64 bits, and the 32-bit one (-m32), where AEffect is the
// 144-byte record every 32-bit host expects. Both layouts are pinned by static_asserts below.
#pragma once

#include <cstddef>
#include <cstdint>

using VstInt16 = std::int16_t;
using VstInt32 = std::int32_t;
using VstIntPtr = std::intptr_t;

struct AEffect;

using audioMasterCallback = VstIntPtr (*)(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                          VstIntPtr value, void* ptr, float opt);
using AEffectDispatcherProc = VstIntPtr (*)(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                            VstIntPtr value, void* ptr, float opt);
using AEffectProcessProc = void (*)(AEffect* effect, float** inputs, float** outputs,
                                    VstInt32 sampleFrames);
using AEffectProcessDoubleProc = void (*)(AEffect* effect, double** inputs, double** outputs,
                                          VstInt32 sampleFrames);
using AEffectSetParameterProc = void (*)(AEffect* effect, VstInt32 index, float parameter);
using AEffectGetParameterProc = float (*)(AEffect* effect, VstInt32 index);

// Four characters packed with the first one in the most significant byte.
constexpr VstInt32 fourCharCode(char a, char b, char c, char d) noexcept {
  return static_cast<VstInt32>((static_cast<std::uint32_t>(static_cast<unsigned char>(a)) << 24) |
                               (static_cast<std::uint32_t>(static_cast<unsigned char>(b)) << 16) |
                               (static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << 8) |
                               static_cast<std::uint32_t>(static_cast<unsigned char>(d)));
}

constexpr VstInt32 kEffectMagic = fourCharCode('V', 's', 't', 'P');  // 0x56737450
constexpr VstInt32 kVstVersion = 2400;

struct AEffect {
  VstInt32 magic;
  AEffectDispatcherProc dispatcher;
  AEffectProcessProc process;  // deprecated accumulating process
  AEffectSetParameterProc setParameter;
  AEffectGetParameterProc getParameter;
  VstInt32 numPrograms;
  VstInt32 numParams;
  VstInt32 numInputs;
  VstInt32 numOutputs;
  VstInt32 flags;
  VstIntPtr resvd1;
  VstIntPtr resvd2;
  VstInt32 initialDelay;
  VstInt32 realQualities;  // deprecated
  VstInt32 offQualities;   // deprecated
  float ioRatio;           // deprecated
  void* object;
  void* user;
  VstInt32 uniqueID;
  VstInt32 version;
  AEffectProcessProc processReplacing;
  AEffectProcessDoubleProc processDoubleReplacing;
  char future[56];
};

enum VstAEffectFlags : VstInt32 {
  effFlagsHasEditor = 1 << 0,
  effFlagsHasClip = 1 << 1,  // deprecated
  effFlagsHasVu = 1 << 2,    // deprecated
  effFlagsCanMono = 1 << 3,  // deprecated
  effFlagsCanReplacing = 1 << 4,
  effFlagsProgramChunks = 1 << 5,
  effFlagsIsSynth = 1 << 8,
  effFlagsNoSoundInStop = 1 << 9,
  effFlagsExtIsAsync = 1 << 10,    // deprecated
  effFlagsExtHasBuffer = 1 << 11,  // deprecated
  effFlagsCanDoubleReplacing = 1 << 12,
};

// Requests a host sends to the effect's dispatcher.
enum AEffectOpcodes : VstInt32 {
  effOpen = 0,
  effClose,
  effSetProgram,
  effGetProgram,
  effSetProgramName,
  effGetProgramName,
  effGetParamLabel,
  effGetParamDisplay,
  effGetParamName,
  effGetVu,  // deprecated
  effSetSampleRate,
  effSetBlockSize,
  effMainsChanged,
  effEditGetRect,
  effEditOpen,
  effEditClose,
  effEditDraw,   // deprecated
  effEditMouse,  // deprecated
  effEditKey,    // deprecated
  effEditIdle,
  effEditTop,    // deprecated
  effEditSleep,  // deprecated
  effIdentify,   // deprecated
  effGetChunk,
  effSetChunk,
  effNumOpcodes
};

enum AEffectXOpcodes : VstInt32 {
  effProcessEvents = effSetChunk + 1,  // 25
  effCanBeAutomated,
  effString2Parameter,
  effGetNumProgramCategories,  // deprecated
  effGetProgramNameIndexed,
  effCopyProgram,    // deprecated
  effConnectInput,   // deprecated
  effConnectOutput,  // deprecated
  effGetInputProperties,
  effGetOutputProperties,
  effGetPlugCategory,
  effGetCurrentPosition,    // deprecated
  effGetDestinationBuffer,  // deprecated
  effOfflineNotify,
  effOfflinePrepare,
  effOfflineRun,
  effProcessVarIo,
  effSetSpeakerArrangement,
  effSetBlockSizeAndSampleRate,  // deprecated
  effSetBypass,
  effGetEffectName,
  effGetErrorText,  // deprecated
  effGetVendorString,
  effGetProductString,
  effGetVendorVersion,
  effVendorSpecific,
  effCanDo,
  effGetTailSize,
  effIdle,             // deprecated
  effGetIcon,          // deprecated
  effSetViewPosition,  // deprecated
  effGetParameterProperties,
  effKeysRequired,  // deprecated
  effGetVstVersion,
  effEditKeyDown,
  effEditKeyUp,
  effSetEditKnobMode,
  effGetMidiProgramName,
  effGetCurrentMidiProgram,
  effGetMidiProgramCategory,
  effHasMidiProgramsChanged,
  effGetMidiKeyName,
  effBeginSetProgram,
  effEndSetProgram,
  effGetSpeakerArrangement,
  effShellGetNextPlugin,
  effStartProcess,
  effStopProcess,
  effSetTotalSampleToProcess,
  effSetPanLaw,
  effBeginLoadBank,
  effBeginLoadProgram,
  effSetProcessPrecision,
  effGetNumMidiInputChannels,
  effGetNumMidiOutputChannels,  // 79
};
static_assert(effGetNumMidiOutputChannels == 79);

// Requests the effect sends to the host callback.
enum AudioMasterOpcodes : VstInt32 {
  audioMasterAutomate = 0,
  audioMasterVersion,
  audioMasterCurrentId,
  audioMasterIdle,
  audioMasterPinConnected,  // deprecated
};

enum AudioMasterOpcodesX : VstInt32 {
  audioMasterWantMidi = audioMasterPinConnected + 2,  // 6, deprecated
  audioMasterGetTime,
  audioMasterProcessEvents,
  audioMasterSetTime,                      // deprecated
  audioMasterTempoAt,                      // deprecated
  audioMasterGetNumAutomatableParameters,  // deprecated
  audioMasterGetParameterQuantization,     // deprecated
  audioMasterIOChanged,
  audioMasterNeedIdle,  // deprecated
  audioMasterSizeWindow,
  audioMasterGetSampleRate,
  audioMasterGetBlockSize,
  audioMasterGetInputLatency,
  audioMasterGetOutputLatency,
  audioMasterGetPreviousPlug,          // deprecated
  audioMasterGetNextPlug,              // deprecated
  audioMasterWillReplaceOrAccumulate,  // deprecated
  audioMasterGetCurrentProcessLevel,
  audioMasterGetAutomationState,
  audioMasterOfflineStart,
  audioMasterOfflineRead,
  audioMasterOfflineWrite,
  audioMasterOfflineGetCurrentPass,
  audioMasterOfflineGetCurrentMetaPass,
  audioMasterSetOutputSampleRate,          // deprecated
  audioMasterGetOutputSpeakerArrangement,  // deprecated
  audioMasterGetVendorString,
  audioMasterGetProductString,
  audioMasterGetVendorVersion,
  audioMasterVendorSpecific,
  audioMasterSetIcon,  // deprecated
  audioMasterCanDo,
  audioMasterGetLanguage,
  audioMasterOpenWindow,   // deprecated
  audioMasterCloseWindow,  // deprecated
  audioMasterGetDirectory,
  audioMasterUpdateDisplay,
  audioMasterBeginEdit,
  audioMasterEndEdit,
  audioMasterOpenFileSelector,
  audioMasterCloseFileSelector,
  audioMasterEditFile,                    // deprecated
  audioMasterGetChunkFile,                // deprecated
  audioMasterGetInputSpeakerArrangement,  // deprecated, 49
};
static_assert(audioMasterGetInputSpeakerArrangement == 49);

// Buffer sizes of the texts that cross the boundary, terminating zero not included.
constexpr int kVstMaxProgNameLen = 24;
constexpr int kVstMaxParamStrLen = 8;
constexpr int kVstMaxVendorStrLen = 64;
constexpr int kVstMaxProductStrLen = 64;
constexpr int kVstMaxEffectNameLen = 32;
constexpr int kVstMaxNameLen = 64;
constexpr int kVstMaxLabelLen = 64;
constexpr int kVstMaxShortLabelLen = 8;
constexpr int kVstMaxCategLabelLen = 24;
constexpr int kVstMaxFileNameLen = 100;

enum VstPlugCategory : VstInt32 {
  kPlugCategUnknown = 0,
  kPlugCategEffect,
  kPlugCategSynth,
  kPlugCategAnalysis,
  kPlugCategMastering,
  kPlugCategSpacializer,
  kPlugCategRoomFx,
  kPlugSurroundFx,
  kPlugCategRestoration,
  kPlugCategOfflineProcess,
  kPlugCategShell,
  kPlugCategGenerator,
  kPlugCategMaxCount
};

enum VstOfflineOption : VstInt32 {
  kVstOfflineAudio = 0,
  kVstOfflinePeaks,
  kVstOfflineParameter,
  kVstOfflineMarker,
  kVstOfflineCursor,
  kVstOfflineSelection,
  kVstOfflineQueryFiles
};

enum VstProcessPrecision : VstInt32 { kVstProcessPrecision32 = 0, kVstProcessPrecision64 };

enum VstParameterFlags : VstInt32 {
  kVstParameterIsSwitch = 1 << 0,
  kVstParameterUsesIntegerMinMax = 1 << 1,
  kVstParameterUsesFloatStep = 1 << 2,
  kVstParameterUsesIntStep = 1 << 3,
  kVstParameterSupportsDisplayIndex = 1 << 4,
  kVstParameterSupportsDisplayCategory = 1 << 5,
  kVstParameterCanRamp = 1 << 6,
};

struct VstParameterProperties {
  float stepFloat;
  float smallStepFloat;
  float largeStepFloat;
  char label[kVstMaxLabelLen];
  VstInt32 flags;
  VstInt32 minInteger;
  VstInt32 maxInteger;
  VstInt32 stepInteger;
  VstInt32 largeStepInteger;
  char shortLabel[kVstMaxShortLabelLen];
  VstInt16 displayIndex;
  VstInt16 category;
  VstInt16 numParametersInCategory;
  VstInt16 reserved;
  char categoryLabel[kVstMaxCategLabelLen];
  char future[16];
};

struct VstSpeakerProperties {
  float azimuth;
  float elevation;
  float radius;
  float reserved;
  char name[kVstMaxNameLen];
  VstInt32 type;
  char future[28];
};

// The declared array holds eight speakers; arrangements made by AudioEffectX::allocateArrangement
// hold exactly numChannels of them.
struct VstSpeakerArrangement {
  VstInt32 type;
  VstInt32 numChannels;
  VstSpeakerProperties speakers[8];
};

struct VstKeyCode {
  VstInt32 character;
  unsigned char virt;
  unsigned char modifier;
};

struct ERect {
  VstInt16 top;
  VstInt16 left;
  VstInt16 bottom;
  VstInt16 right;
};

// Records this layer only passes on: never dereferenced here.
struct VstEvents;
struct VstTimeInfo;
struct VstPinProperties;
struct VstVariableIo;
struct VstOfflineTask;
struct VstAudioFile;
struct VstPatchChunkInfo;
struct VstFileSelect;
struct MidiProgramName;
struct MidiProgramCategory;
struct MidiKeyName;
struct __VstWindowDeprecated;

// Layout pins: a host compiled elsewhere reads these records by offset.
static_assert(sizeof(VstParameterProperties) == 152);
static_assert(sizeof(VstSpeakerProperties) == 112);
static_assert(offsetof(VstSpeakerArrangement, speakers) == 8);
static_assert(sizeof(VstKeyCode) == 8);
static_assert(sizeof(ERect) == 8);

#if INTPTR_MAX == INT32_MAX
static_assert(sizeof(AEffect) == 144);
static_assert(offsetof(AEffect, dispatcher) == 4);
static_assert(offsetof(AEffect, process) == 8);
static_assert(offsetof(AEffect, setParameter) == 12);
static_assert(offsetof(AEffect, getParameter) == 16);
static_assert(offsetof(AEffect, numPrograms) == 20);
static_assert(offsetof(AEffect, numParams) == 24);
static_assert(offsetof(AEffect, numInputs) == 28);
static_assert(offsetof(AEffect, numOutputs) == 32);
static_assert(offsetof(AEffect, flags) == 36);
static_assert(offsetof(AEffect, resvd1) == 40);
static_assert(offsetof(AEffect, resvd2) == 44);
static_assert(offsetof(AEffect, initialDelay) == 48);
static_assert(offsetof(AEffect, realQualities) == 52);
static_assert(offsetof(AEffect, offQualities) == 56);
static_assert(offsetof(AEffect, ioRatio) == 60);
static_assert(offsetof(AEffect, object) == 64);
static_assert(offsetof(AEffect, user) == 68);
static_assert(offsetof(AEffect, uniqueID) == 72);
static_assert(offsetof(AEffect, version) == 76);
static_assert(offsetof(AEffect, processReplacing) == 80);
static_assert(offsetof(AEffect, processDoubleReplacing) == 84);
static_assert(offsetof(AEffect, future) == 88);
#else
static_assert(sizeof(AEffect) == 192);
static_assert(offsetof(AEffect, dispatcher) == 8);
static_assert(offsetof(AEffect, process) == 16);
static_assert(offsetof(AEffect, setParameter) == 24);
static_assert(offsetof(AEffect, getParameter) == 32);
static_assert(offsetof(AEffect, numPrograms) == 40);
static_assert(offsetof(AEffect, numParams) == 44);
static_assert(offsetof(AEffect, numInputs) == 48);
static_assert(offsetof(AEffect, numOutputs) == 52);
static_assert(offsetof(AEffect, flags) == 56);
static_assert(offsetof(AEffect, resvd1) == 64);
static_assert(offsetof(AEffect, resvd2) == 72);
static_assert(offsetof(AEffect, initialDelay) == 80);
static_assert(offsetof(AEffect, realQualities) == 84);
static_assert(offsetof(AEffect, offQualities) == 88);
static_assert(offsetof(AEffect, ioRatio) == 92);
static_assert(offsetof(AEffect, object) == 96);
static_assert(offsetof(AEffect, user) == 104);
static_assert(offsetof(AEffect, uniqueID) == 112);
static_assert(offsetof(AEffect, version) == 116);
static_assert(offsetof(AEffect, processReplacing) == 120);
static_assert(offsetof(AEffect, processDoubleReplacing) == 128);
static_assert(offsetof(AEffect, future) == 136);
#endif
