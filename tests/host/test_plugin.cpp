// The stand-in plug-ins, one module per PLUGIN_KIND (the effect, or one way of failing) exporting
// PLUGIN_ENTRY. The effect has the amp's parameter layout and two programs; y = 2 * VOLUME * s with
// s <- (x + s) / 2 carries state across blocks, showing a host that mixes channels or instances.
// A block longer than the host announced comes out as NaN.
#include <unistd.h>

#include <array>
#include <cstdio>
#include <limits>

#include "hostif/orv_typeif.h"
#include "stand_in_log.h"

namespace {

enum class Kind { fake, orv_only, slow, no_entry, null_handle, refusing, bad_magic, no_double };
constexpr Kind kKind = Kind::PLUGIN_KIND;

stand_in::Log log;

constexpr const char* kProgramNames[] = {"Clean", "Loud"};
constexpr float kProgramVolumes[] = {0.5f, 0.9f};
constexpr const char* kParameterNames[] = {"", "DEEP", "VOLUME", "TREBLE", "BASS", "MASTER"};
constexpr int kNumPrograms = 2;
constexpr int kNumParams = 6;

struct Handle : Orv_TypeIF {
  ~Handle() override { log.push_back(stand_in::kHandleDeleted); }
};

struct Effect {
  AEffect record{};
  audioMasterCallback host;
  std::array<float, kNumParams> values{0.0f, 0.0f, kProgramVolumes[0]};
  int program = 0;
  VstIntPtr blockSize = 0;
  double state = 0.0;

  explicit Effect(audioMasterCallback callback) : host(callback) {
    record.magic = kEffectMagic;
    record.dispatcher = &dispatch;
    record.setParameter = [](AEffect* e, VstInt32 i, float v) { self(e)->values.at(i) = v; };
    record.getParameter = [](AEffect* e, VstInt32 i) { return self(e)->values.at(i); };
    record.processDoubleReplacing = &process;
    record.numPrograms = kNumPrograms;
    record.numParams = kNumParams;
    record.numInputs = record.numOutputs = 1;
    record.flags = effFlagsCanReplacing;
    if (kKind != Kind::no_double) record.flags |= effFlagsCanDoubleReplacing;
    record.object = this;
  }

  static Effect* self(AEffect* e) { return static_cast<Effect*>(e->object); }

  static void process(AEffect* e, double** in, double** out, VstInt32 n) {
    if (kKind == Kind::slow) usleep(1000);  // renders long enough to interrupt
    Effect& fx = *self(e);
    for (VstInt32 i = 0; i < n; ++i) {
      fx.state = 0.5 * (in[0][i] + fx.state);
      out[0][i] = n <= fx.blockSize ? 2.0 * fx.values[2] * fx.state
                                    : std::numeric_limits<double>::quiet_NaN();
    }
  }

  // Logs every request; effVendorSpecific passes host request `index` on to this record's host.
  static VstIntPtr dispatch(AEffect* e, VstInt32 op, VstInt32 i, VstIntPtr value, void* ptr,
                            float) {
    log.push_back(op);
    Effect* fx = self(e);
    const auto say = [ptr](const char* format, auto what) {
      return std::snprintf(static_cast<char*>(ptr), kVstMaxParamStrLen, format, what) > 0;
    };
    const bool param = i > 0 && i < kNumParams;
    if (op == effClose) delete fx;
    if (op == effSetProgram && value >= 0 && value < kNumPrograms) {
      fx->program = static_cast<int>(value);
      fx->values[2] = kProgramVolumes[value];
    }
    if (op == effSetBlockSize) fx->blockSize = value;
    if (op == effGetProgram) return fx->program;
    if (op == effGetProgramName) return say("%s", kProgramNames[fx->program]);
    if (op == effGetProgramNameIndexed)
      return i >= 0 && i < kNumPrograms && say("%s", kProgramNames[i]);
    if (op == effGetParamName) return param && say("%s", kParameterNames[i]);
    if (op == effGetParamDisplay) return param && say("%.2f", 1 + 9 * fx->values[i]);
    if (op == effGetEffectName) return say("%s", "Fake");
    if (op == effVendorSpecific) return fx->host(e, i, 0, 0, ptr, 0.0f);
    return 0;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const stand_in::Log* fakeEffectLog() {
  return &log;
}

extern "C" __attribute__((visibility("default"))) Orv_TypeIF* PLUGIN_ENTRY(
    audioMasterCallback host) {
  static AEffect stray{};  // bad_magic: no effect's record, so the host must not close it
  const VstIntPtr version = host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f);
  if (version != 2400 || kKind == Kind::null_handle) return nullptr;
  Orv_TypeIF* handle = new Handle;
  stray.magic = fourCharCode('N', 'o', 'p', 'e');
  if (kKind == Kind::bad_magic) handle->aeffect = &stray;
  if (kKind != Kind::bad_magic && kKind != Kind::refusing)
    handle->aeffect = &(new Effect(host))->record;
  return handle;
}
