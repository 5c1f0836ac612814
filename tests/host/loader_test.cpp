// The loader against broken libraries, the stand-in effect and the real amp.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "fake_effect.h"
#include "host/host_callback.h"
#include "host/module_description.h"
#include "host/plugin_error.h"
#include "host/plugin_instance.h"
#include "host_test_support.h"

namespace {

using namespace host_test;
using tarnwell::host::PluginError;
using tarnwell::host::PluginInstance;
using tarnwell::host::PluginLibrary;

struct BrokenCase {
  const char* kind;
  const char* expected;  // part of the message
};

class BrokenLibrary : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenLibrary, FailsWithAClearMessage) {
  const auto& [kind, expected] = GetParam();
  try {
    PluginInstance instance(PluginLibrary::open(testPlugin(kind)));
    FAIL() << "loaded a broken library";
  } catch (const PluginError& error) {
    EXPECT_NE(std::string(error.what()).find(expected), std::string::npos) << error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Loader, BrokenLibrary,
    testing::Values(BrokenCase{"missing", "plug-in not found"},
                    BrokenCase{"no_entry", "exports neither getinterface nor OrvTypeIF"},
                    BrokenCase{"null_handle", "returned no instance"},
                    BrokenCase{"refusing", "refused to create an instance"},
                    BrokenCase{"bad_magic", "not a VST 2.4 effect (magic 0x4e6f7065)"},
                    BrokenCase{"single_precision", "cannot process double precision"}),
    [](const auto& info) { return std::string(info.param.kind); });

TEST(Loader, ReportsTheLoadersOwnTextForAFileThatIsNoLibrary) {
  const ScratchDir dir;
  const auto path = dir / "notes.so";
  std::FILE* file = std::fopen(path.c_str(), "w");
  std::fputs("not an ELF file\n", file);
  std::fclose(file);
  try {
    PluginLibrary::open(path);
    FAIL() << "loaded a text file";
  } catch (const PluginError& error) {
    EXPECT_NE(std::string(error.what()).find("cannot load plug-in"), std::string::npos);
    EXPECT_NE(std::string(error.what()).find("notes.so"), std::string::npos) << error.what();
  }
}

// Reads the stand-in's log; holding our own reference keeps the library (and its log) loaded
// while the loader's instances come and go.
class FakeLog {
 public:
  explicit FakeLog(const std::filesystem::path& path)
      : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    auto* get = reinterpret_cast<const fake::Log* (*)()>(dlsym(handle_, "fakeEffectLog"));
    log_ = get();
    start_ = log_->size;
  }
  ~FakeLog() { dlclose(handle_); }
  std::vector<int> events() const {
    return {log_->events.begin() + start_, log_->events.begin() + log_->size};
  }

 private:
  void* handle_;
  const fake::Log* log_;
  int start_;
};

TEST(Loader, DrivesTheLifecycleInHostOrder) {
  const FakeLog log(testPlugin("fake"));
  {
    PluginInstance instance(PluginLibrary::open(testPlugin("fake")));
    instance.prepare(48000.0, 512);
  }
  const std::vector<int> expected = {effOpen,         effSetSampleRate, effSetBlockSize,
                                     effMainsChanged, effStartProcess,  effStopProcess,
                                     effMainsChanged, effClose,         fake::kHandleDeleted};
  EXPECT_EQ(log.events(), expected);
}

TEST(Loader, LogHookRecordsRequests) {
  const FakeLog log(testPlugin("fake"));
  PluginInstance instance(PluginLibrary::open(testPlugin("fake")));
  instance.programName();
  ASSERT_FALSE(log.events().empty());
  EXPECT_EQ(log.events().back(), effGetProgramName);
}

TEST(Loader, FallsBackToTheTwinEntryPoint) {
  const auto library = PluginLibrary::open(testPlugin("orv_only"));
  EXPECT_EQ(library->entryName(), "OrvTypeIF");
  PluginInstance instance(library);
  EXPECT_EQ(instance.effectName(), "Fake");
}

TEST(Loader, KeepsTheLibraryLoadedWhileAnInstanceLives) {
  auto library = PluginLibrary::open(testPlugin("fake"));
  PluginInstance instance(library);
  library.reset();
  instance.prepare(44100.0, 4);
  const double in[4] = {1, 1, 1, 1};
  double out[4] = {};
  instance.process(in, out, 4);
  EXPECT_EQ(out[3], 0.9375);  // VOLUME 0.5: gain 1, state (1 - 2^-n)
}

TEST(HostCallback, AnswersWhatARenderHostKnows) {
  using tarnwell::host::hostCallback;
  EXPECT_EQ(hostCallback(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f), 2400);

  AEffect record{};
  tarnwell::host::HostContext context{96000.0, 256};
  record.user = &context;
  EXPECT_EQ(hostCallback(&record, audioMasterGetSampleRate, 0, 0, nullptr, 0.0f), 96000);
  EXPECT_EQ(hostCallback(&record, audioMasterGetBlockSize, 0, 0, nullptr, 0.0f), 256);
  EXPECT_EQ(hostCallback(nullptr, audioMasterGetSampleRate, 0, 0, nullptr, 0.0f), 0);

  char text[kVstMaxVendorStrLen];
  std::memset(text, 'x', sizeof text);
  EXPECT_EQ(hostCallback(&record, audioMasterGetVendorString, 0, 0, text, 0.0f), 1);
  EXPECT_STREQ(text, "Tarnwell");
  EXPECT_EQ(hostCallback(&record, audioMasterGetProductString, 0, 0, text, 0.0f), 1);
  EXPECT_STREQ(text, "tarnwell render host");

  char yes[] = "startStopProcess";
  char no[] = "sendVstTimeInfo";
  EXPECT_EQ(hostCallback(&record, audioMasterCanDo, 0, 0, yes, 0.0f), 1);
  EXPECT_EQ(hostCallback(&record, audioMasterCanDo, 0, 0, no, 0.0f), 0);
  EXPECT_EQ(hostCallback(&record, audioMasterGetTime, 0, 0, nullptr, 0.0f), 0);
  EXPECT_EQ(hostCallback(&record, audioMasterAutomate, 1, 0, nullptr, 0.5f), 0);
}

TEST(HostCallback, EachInstanceHearsItsOwnSampleRate) {
  const auto library = PluginLibrary::open(testPlugin("fake"));
  PluginInstance slow(library);
  PluginInstance fast(library);
  slow.prepare(44100.0, 64);
  fast.prepare(96000.0, 64);
  // The stand-in answers effVendorSpecific with what the host tells its own record.
  const auto askedRate = [](const PluginInstance& instance) {
    return instance.record().dispatcher(const_cast<AEffect*>(&instance.record()), effVendorSpecific,
                                        0, 0, nullptr, 0.0f);
  };
  EXPECT_EQ(askedRate(slow), 44100);
  EXPECT_EQ(askedRate(fast), 96000);
}

TEST(Loader, RefusesToPrepareAnEffectThatIsNotMono) {
  PluginInstance instance(PluginLibrary::open(testPlugin("fake")));
  const_cast<AEffect&>(instance.record()).numOutputs = 2;
  EXPECT_THROW(instance.prepare(44100.0, 64), PluginError);
}

TEST(Loader, OffersNoModuleDescriptionForAForeignObject) {
  PluginInstance instance(PluginLibrary::open(testPlugin("fake")));
  EXPECT_FALSE(tarnwell::host::describeModule(instance).has_value());
}

class RealAmp : public testing::Test {
 protected:
  void SetUp() override {
    if (kRealPlugin.empty()) GTEST_SKIP() << "the amp plug-in is not part of this build";
  }
};

TEST_F(RealAmp, ShowsItsIdentity) {
  PluginInstance amp(PluginLibrary::open(kRealPlugin));
  EXPECT_EQ(amp.effectName(), "NEW Tarnwell");
  EXPECT_EQ(amp.productString(), "NEW Tarnwell");
  EXPECT_EQ(amp.vendorVersion(), 1000);
  EXPECT_EQ(amp.category(), kPlugCategEffect);
  EXPECT_EQ(amp.record().uniqueID, 0x42313030);
  EXPECT_EQ(amp.record().numInputs, 1);
  EXPECT_EQ(amp.record().numOutputs, 1);
  EXPECT_EQ(amp.numParameters(), 6);
  EXPECT_EQ(amp.numPrograms(), 16);
  EXPECT_EQ(amp.parameterName(2), "VOLUME");
  EXPECT_EQ(amp.parameterDisplay(1), "off");
  EXPECT_EQ(amp.parameterDisplay(2), " 5.50");
  EXPECT_EQ(amp.programName(), "Init 1");
  EXPECT_EQ(amp.programNameIndexed(15), "Init");
  EXPECT_EQ(amp.programNameIndexed(16), std::nullopt);
}

TEST_F(RealAmp, DescribesItsModule) {
  PluginInstance amp(PluginLibrary::open(kRealPlugin));
  const auto module = tarnwell::host::describeModule(amp);
  ASSERT_TRUE(module.has_value());
  ASSERT_EQ(module->inputs.size(), 1u);
  ASSERT_EQ(module->outputs.size(), 1u);
  EXPECT_EQ(module->inputs[0].signals, 1);
  EXPECT_EQ(module->inputs[0].firstSignal, 0);
  EXPECT_EQ(module->outputs[0].signals, 1);
  EXPECT_EQ(module->dryInputSignal, -1);
  EXPECT_EQ(module->headerVersion, 1);
}

TEST_F(RealAmp, TwoInstancesRenderTheSameInputAlike) {
  const auto library = PluginLibrary::open(kRealPlugin);
  PluginInstance a(library);
  PluginInstance b(library);
  a.prepare(48000.0, 256);
  b.prepare(48000.0, 256);
  std::vector<double> in(256);
  for (int i = 0; i < 256; ++i) in[i] = testSignal(i, 0, 48000);
  std::vector<double> outA(256), outB(256);
  for (int block = 0; block < 8; ++block) {
    a.process(in.data(), outA.data(), 256);
    b.process(in.data(), outB.data(), 256);
    ASSERT_EQ(outA, outB);
  }
  EXPECT_TRUE(std::ranges::all_of(outA, [](double s) { return std::isfinite(s); }));
  EXPECT_TRUE(std::ranges::any_of(outA, [](double s) { return s != 0.0; }));
}

}  // namespace
