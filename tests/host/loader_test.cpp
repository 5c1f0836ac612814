// The loader against each broken library, the stand-in effect and the real amp; the host callback.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/host_callback.h"
#include "host/plugin_error.h"
#include "host/settle.h"
#include "host_test_support.h"
#include "stand_in_log.h"

namespace {

using namespace host_test;
using tarnwell::host::PluginError;

TEST(Loader, TurnsEveryBrokenLibraryIntoAClearErrorNamingIt) {
  const std::pair<std::string, std::string> cases[] = {
      {testPlugin("missing"), "plug-in not found"},
      {TARNWELL_COMMAND, "cannot load plug-in"},  // an executable, not a library
      {testPlugin("no_entry"), "exports neither getinterface nor OrvTypeIF"},
      {testPlugin("null_handle"), "returned no instance from getinterface"},
      {testPlugin("refusing"), "refused to create an instance"},
      {testPlugin("bad_magic"), "not a VST 2.4 effect (magic 0x4e6f7065)"},
      {testPlugin("no_double"), "cannot process double precision"},
  };
  for (const auto& [path, message] : cases) {
    try {
      PluginInstance instance(PluginLibrary::open(path));
      ADD_FAILURE() << "loaded " << path;
    } catch (const PluginError& error) {
      EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
    }
  }
}

// The stand-in's log, read through a reference of our own that keeps the library loaded.
struct StandInLog {
  void* library = dlopen(testPlugin("fake").c_str(), RTLD_NOW);
  const stand_in::Log& log =
      *reinterpret_cast<const stand_in::Log* (*)()>(dlsym(library, "fakeEffectLog"))();
  const std::size_t start = log.size();
  ~StandInLog() { dlclose(library); }
  std::vector<int> events() const { return {log.begin() + start, log.end()}; }
};

TEST(Loader, DrivesTheLifecycleInHostOrder) {
  const StandInLog log;
  {
    PluginInstance instance(PluginLibrary::open(testPlugin("fake")));
    auto& record = const_cast<AEffect&>(instance.record());
    record.dispatcher(&record, effGetVendorVersion, 0, 0, nullptr, 0.0f);
    ASSERT_EQ(log.events(), (std::vector<int>{effOpen, effGetVendorVersion}));  // the log hears
    instance.prepare(48000.0, 512);
  }
  EXPECT_EQ(log.events(),
            (std::vector<int>{effOpen, effGetVendorVersion, effSetSampleRate, effSetBlockSize,
                              effMainsChanged, effStartProcess, effStopProcess, effMainsChanged,
                              effClose, stand_in::kHandleDeleted}));
}

TEST(Loader, FallsBackToTheTwinEntryPointKeepsTheLibraryLoadedAndRefusesAnythingButMono) {
  auto library = PluginLibrary::open(testPlugin("orv_only"));
  EXPECT_EQ(library->entryName(), "OrvTypeIF");
  PluginInstance instance(library);
  EXPECT_EQ(instance.effectName(), "Fake");
  library.reset();
  instance.prepare(44100.0, 4);
  double in[4] = {1, 1, 1, 1}, out[4] = {};
  instance.process(in, out, 4);
  EXPECT_EQ(out[3], 0.9375);  // VOLUME 0.5: gain 1, state 1 - 2^-n
  const_cast<AEffect&>(instance.record()).numOutputs = 2;
  EXPECT_THROW(instance.prepare(44100.0, 64), PluginError);
}

TEST(HostCallback, AnswersEachInstanceWhatARenderHostKnows) {
  const auto library = PluginLibrary::open(testPlugin("fake"));
  PluginInstance slow(library), fast(library);
  slow.prepare(44100.0, 64);
  fast.prepare(96000.0, 256);
  const auto ask = [](const PluginInstance& instance, VstInt32 request, void* ptr = nullptr) {
    auto& record = const_cast<AEffect&>(instance.record());  // the stand-in asks its host
    return record.dispatcher(&record, effVendorSpecific, request, 0, ptr, 0.0f);
  };
  EXPECT_EQ(ask(slow, audioMasterGetSampleRate), 44100);
  EXPECT_EQ(ask(fast, audioMasterGetSampleRate), 96000);
  EXPECT_EQ(ask(fast, audioMasterGetBlockSize), 256);
  EXPECT_EQ(ask(fast, audioMasterGetTime), 0);
  char text[kVstMaxVendorStrLen] = "garbage", yes[] = "startStopProcess", no[] = "sendVstTimeInfo";
  EXPECT_EQ(ask(slow, audioMasterCanDo, yes), 1);
  EXPECT_EQ(ask(slow, audioMasterCanDo, no), 0);
  EXPECT_EQ(ask(slow, audioMasterGetVendorString, text), 1);
  EXPECT_STREQ(text, "Tarnwell");
  EXPECT_EQ(ask(slow, audioMasterGetProductString, text), 1);
  EXPECT_STREQ(text, "tarnwell render host");
  // Before the host owns a record (the entry point asks for the version), nothing to look up.
  EXPECT_EQ(tarnwell::host::hostCallback(nullptr, audioMasterGetSampleRate, 0, 0, nullptr, 0), 0);
}

TEST(Settle, LeavesTheAmpSilentOnSilenceWhateverItPlayedBefore) {
  // DEEP on puts the slowest pole in the tone stack (15 Hz); VOLUME and MASTER up make the loudest
  // tail, and an offset the slowest decay. The burst stands for anything an instance did before
  // settling.
  for (const double rate : {44100.0, 48000.0, 96000.0}) {
    SCOPED_TRACE(rate);
    PluginInstance amp(PluginLibrary::open(kAmp));
    for (const int index : {1, 2, 4, 5}) amp.setParameter(index, 1.0f);
    amp.prepare(rate, 256);
    std::vector<double> signal(256), out(256);
    for (int block = 0; block < 40; ++block) {
      for (int i = 0; i < 256; ++i) signal[i] = 0.4 + 0.5 * std::sin(0.006 * (block * 256 + i));
      amp.process(signal.data(), out.data(), 256);
    }
    tarnwell::host::settle(amp);
    std::ranges::fill(signal, 0.0);
    amp.process(signal.data(), out.data(), 256);
    for (const double s : out) ASSERT_LT(std::fabs(s), 1e-6);
  }
}

}  // namespace
