// Tarnwell: the bass amplifier effect, mono in and mono out in double precision.
//
// Per host sample:  in -> First (26 Hz HP, 18 kHz LP) -> tone stack (7 bands from DEEP, BASS,
// TREBLE) -> VOLUME -> [osFactor times: up-filter -> clip[0] -> 80 Hz low shelf -> MASTER ->
// clip[1] -> down-filter] -> Final (30 Hz HP, 2700 Hz LP) -> 20 Hz HP -> trim -> out.
//
// Lifetime: constructed by createPluginFilter with parameters and programs but no DSP state;
// setSampleRate builds the filters and buffer (all DSP pointers null or all valid); effClose
// deletes the object.
//
// Threads and locks:
// - processDoubleReplacing runs on the host's audio thread and holds `mutex` for the whole block;
//   setParameter holds it for each single store, so a change lands at the next block.
// - Getters, texts, setSampleRate, constructor and destructor take no lock. The host must not run
//   setSampleRate or close the instance while a block is processed.
// - The live values and program values are atomics (relaxed), so lock-free readers are
// well-defined.
// - The waveshaper tables are shared by every instance: see clip below.
#pragma once

#include <atomic>

#include "amp/parameter_index.h"
#include "amp/program.h"
#include "amp/recursive_mutex.h"
#include "dsp/clipper.h"
#include "dsp/iirfilter.h"
#include "hostif/orv_typebase.h"

class Tarnwell : public Orv_TypeBase {
 public:
  explicit Tarnwell(audioMasterCallback host);
  ~Tarnwell() override;

  // Identity.
  bool getEffectName(char* name) override;
  bool getProductString(char* text) override;
  VstInt32 getVendorVersion() override { return 1000; }
  VstPlugCategory getPlugCategory() override { return kPlugCategEffect; }

  // Module description: one mono jack each way, no dry signal.
  VstInt32 getNumOfInJacks() override { return 1; }
  VstInt32 getNumOfOutJacks() override { return 1; }
  VstInt32 getNumOfInSig(VstInt32 /*jack*/) override { return 1; }
  VstInt32 getNumOfOutSig(VstInt32 /*jack*/) override { return 1; }
  VstInt32 getStartNumInSig(VstInt32 /*jack*/) override { return 0; }
  VstInt32 getStartNumOutSig(VstInt32 /*jack*/) override { return 0; }
  VstInt32 getDryInSigNum() override { return -1; }

  // Set-up (setup.cpp).
  void setSampleRate(float newRate) override;

  // Processing (process.cpp). Switching on clears nothing.
  void resume() override {}
  void processReplacing(float** /*inputs*/, float** /*outputs*/,
                        VstInt32 /*sampleFrames*/) noexcept override {}
  void processDoubleReplacing(double** inputs, double** outputs,
                              VstInt32 sampleFrames) noexcept override;

  // Parameters (parameters.cpp).
  void setParameter(VstInt32 index, float value) override;
  float getParameter(VstInt32 index) override;
  void getParameterLabel(VstInt32 index, char* label) override;
  void getParameterDisplay(VstInt32 index, char* text) override;
  void getParameterName(VstInt32 index, char* text) override;
  void getParameterDisplayOf(VstInt32 index, float value, char* text) override;
  bool getParameterProperties(VstInt32 index, VstParameterProperties* p) override;

  // Programs (programs.cpp).
  VstInt32 getProgram() override;
  void setProgram(VstInt32 program) override;
  void setProgramName(char* name) override;
  void getProgramName(char* name) override;
  bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;

  // Constant design tables (design_tables.h), read by the set-up.
  static const VstInt32 num_First[2];
  static const double freq_First[2];
  static const double q_First[2];
  static const double gain_First[2];
  static const VstInt32 num_EQ[7];
  static const double freq_EQ[7];
  static const double gain_EQ[7];
  static const double q_EQ[7];
  static const VstInt32 num_Master;
  static const double freq_Master;
  static const double gain_Master;
  static const double q_Master;
  static const VstInt32 num_Final[2];
  static const double freq_Final[2];
  static const double q_Final[2];
  static const double gain_Final[2];

  // The shared waveshaper tables (clip_tables.cpp). Every curve lives in its own static table,
  // built once on first need and never written again: the first-stage curve for each factor
  // F = 7 and F = 8, and the second-stage curve. clip[0] and clip[1] publish the tables in force
  // (release); a block loads each pointer once (acquire), so a lookup never sees a table being
  // written and a block never mixes two curves. The set-up that last sees a new host rate
  // publishes the first-stage curve of its own F for every instance. Only set-ups take the
  // builder's lock; the audio thread never does. Null until the first set-up.
  static std::atomic<const Clipper*> clip[2];
  // The host rate the tables in force were published for; -1.0 until the first set-up. Guarded
  // by the builder's lock.
  static double clipSampleRate;

 protected:
  // The effect's one lock, for a form that runs several blocks of the chain as one block of its
  // own and must keep parameter stores out of the gaps between them.
  RecursiveMutex& blockLock() noexcept { return mutex; }

 private:
  friend class TarnwellInspector;  // white-box view for the tests

  // Publishes the tables for `rate` with first-stage factor F, unless `rate` is the rate they
  // were last published for. False when a curve could not be built (out of memory).
  static bool useClipTablesFor(double rate, double F);
  // Builds (on first need) and publishes the curves for factor F; false when a curve could not
  // be built, leaving the published tables as they were. Caller holds the builder's lock.
  static bool buildClipTables(double F);

  // Start of a block in which DEEP, BASS or TREBLE changed: ramps the seven bands to the design
  // of the given values over n samples and sets appliedTrim (tone_stack.cpp).
  void redesignToneStack(float deepValue, float trebleValue, float bassValue, int n);
  // End of a block: clears the memory of any filter whose state is no longer finite.
  void clearNonFiniteState() noexcept;

  TarnwellProgram* programs;
  RecursiveMutex mutex;
  VstInt32 numFirstFilters;
  VstInt32 numEqFilters;
  VstInt32 numMasterFilters;
  VstInt32 numFinalFilters;
  double osUpState[6];
  double osDownState[6];
  IIRFilter** firstFilters;
  IIRFilter** eqFilters;
  IIRFilter** masterFilters;
  IIRFilter** finalFilters;
  IIRFilter* outHighPass;
  double trimGain;
  std::atomic<float> deep;
  std::atomic<float> treble;
  std::atomic<float> bass;
  std::atomic<double> volume;
  std::atomic<double> master;
  float lastDeep;
  float lastTreble;
  float lastBass;
  double lastVolume;
  double lastMaster;
  double osCoefA[5];
  double osCoefB[6];
  VstInt32 intSampleRate;
  double curSampleRate;
  VstInt32 osFactor;
  double osFactorD;
  double* osBuffer;
  double appliedTrim;
  double freqOffset;
};
