// What the effect asks of the host: each request's exact arguments with &cEffect first, how the
// answer is read, and the fixed answer when there is no host callback.

#include <gtest/gtest.h>

#include <type_traits>

#include "test_support.h"

namespace {

using E = PlainEffect;

struct Ptr {  // the marker pointer, as whichever pointer type a query takes
  template <typename T>
  operator T*() const {
    return static_cast<T*>(kPtr);
  }
};

// A float argument in a form every compiler takes as a template argument (clang 14 takes no float
// there): the value n / d.
template <int n, int d>
struct Fraction {
  operator float() const { return static_cast<float>(n) / d; }
};

// Calls one query with fixed arguments; its result as an integer.
template <auto query, auto... args>
VstIntPtr ask(E& e) {
  using R = decltype((e.*query)(args...));
  if constexpr (std::is_void_v<R>)
    return (e.*query)(args...), 0;
  else if constexpr (std::is_pointer_v<R>)
    return reinterpret_cast<VstIntPtr>((e.*query)(args...));
  else
    return (e.*query)(args...);
}

struct Query {
  VstIntPtr (*ask)(E&);
  VstInt32 opcode, index;
  VstIntPtr value;
  void* ptr;
  float opt;
  VstIntPtr answer, result, resultWithoutHost;
};

const VstIntPtr P = reinterpret_cast<VstIntPtr>(kPtr);

// clang-format off
const Query kQueries[] = {
  // query, the request it sends (opcode, index, value, ptr, opt), host answer, result, no host
  {ask<&E::getMasterVersion>, audioMasterVersion, 0, 0, nullptr, 0, 2400, 2400, 1},
  {ask<&E::getMasterVersion>, audioMasterVersion, 0, 0, nullptr, 0, 0, 1, 1},
  {ask<&E::getCurrentUniqueId>, audioMasterCurrentId, 0, 0, nullptr, 0, 77, 77, 0},
  {ask<&E::masterIdle>, audioMasterIdle, 0, 0, nullptr, 0, 3, 3, 0},
  {ask<&E::isInputConnected, 3>, audioMasterPinConnected, 3, 0, nullptr, 0, 0, 1, 1},
  {ask<&E::isOutputConnected, 3>, audioMasterPinConnected, 3, 1, nullptr, 0, 1, 0, 1},
  {ask<&E::setParameterAutomated, 2, Fraction<3, 4>{}>,
   audioMasterAutomate, 2, 0, nullptr, 0.75f, 0, 0, 0},
  {ask<&E::getTimeInfo, 7>, audioMasterGetTime, 0, 7, nullptr, 0, P, P, 0},
  {ask<&E::sendVstEventsToHost, Ptr{}>, audioMasterProcessEvents, 0, 0, kPtr, 0, 1, 1, 0},
  {ask<&E::sendVstEventsToHost, Ptr{}>, audioMasterProcessEvents, 0, 0, kPtr, 0, 2, 0, 0},
  {ask<&E::ioChanged>, audioMasterIOChanged, 0, 0, nullptr, 0, 5, 1, 0},
  {ask<&E::updateSampleRate>, audioMasterGetSampleRate, 0, 0, nullptr, 0, 0, 44100, 44100},
  {ask<&E::updateSampleRate>, audioMasterGetSampleRate, 0, 0, nullptr, 0, 48000, 48000, 44100},
  {ask<&E::updateBlockSize>, audioMasterGetBlockSize, 0, 0, nullptr, 0, -5, 1024, 1024},
  {ask<&E::updateBlockSize>, audioMasterGetBlockSize, 0, 0, nullptr, 0, 512, 512, 1024},
  {ask<&E::sizeWindow, 640, 480>, audioMasterSizeWindow, 640, 480, nullptr, 0, 1, 1, 0},
  {ask<&E::getInputLatency>, audioMasterGetInputLatency, 0, 0, nullptr, 0, 64, 64, 0},
  {ask<&E::getOutputLatency>, audioMasterGetOutputLatency, 0, 0, nullptr, 0, 32, 32, 0},
  {ask<&E::getCurrentProcessLevel>, audioMasterGetCurrentProcessLevel, 0, 0, nullptr, 0, 2, 2, 0},
  {ask<&E::getAutomationState>, audioMasterGetAutomationState, 0, 0, nullptr, 0, 4, 4, 0},
  {ask<&E::offlineStart, Ptr{}, 3, 2>, audioMasterOfflineStart, 2, 3, kPtr, 0, 9, 1, 0},
  {ask<&E::offlineRead, Ptr{}, kVstOfflinePeaks, true>,
   audioMasterOfflineRead, 1, kVstOfflinePeaks, kPtr, 0, 1, 1, 0},
  {ask<&E::offlineWrite, Ptr{}, kVstOfflineMarker>,
   audioMasterOfflineWrite, 0, kVstOfflineMarker, kPtr, 0, 0, 0, 0},
  {ask<&E::offlineGetCurrentPass>, audioMasterOfflineGetCurrentPass, 0, 0, nullptr, 0, 5, 1, 0},
  {ask<&E::offlineGetCurrentMetaPass>,
   audioMasterOfflineGetCurrentMetaPass, 0, 0, nullptr, 0, 5, 1, 0},
  {ask<&E::getHostVendorString, Ptr{}>, audioMasterGetVendorString, 0, 0, kPtr, 0, 1, 1, 0},
  {ask<&E::getHostProductString, Ptr{}>, audioMasterGetProductString, 0, 0, kPtr, 0, 1, 1, 0},
  {ask<&E::getHostVendorVersion>, audioMasterGetVendorVersion, 0, 0, nullptr, 0, 1200, 1200, 0},
  {ask<&E::hostVendorSpecific, 4, 5, Ptr{}, Fraction<1, 4>{}>,
   audioMasterVendorSpecific, 4, 5, kPtr, 0.25f, 6, 6, 0},
  {ask<&E::canHostDo, Ptr{}>, audioMasterCanDo, 0, 0, kPtr, 0, -1, 1, 0},
  {ask<&E::getHostLanguage>, audioMasterGetLanguage, 0, 0, nullptr, 0, 2, 2, 0},
  {ask<&E::getDirectory>, audioMasterGetDirectory, 0, 0, nullptr, 0, P, P, 0},
  {ask<&E::updateDisplay>, audioMasterUpdateDisplay, 0, 0, nullptr, 0, 1, 1, 0},
  {ask<&E::beginEdit, 3>, audioMasterBeginEdit, 3, 0, nullptr, 0, 1, 1, 0},
  {ask<&E::endEdit, 3>, audioMasterEndEdit, 3, 0, nullptr, 0, 1, 1, 0},
  {ask<&E::openFileSelector, Ptr{}>, audioMasterOpenFileSelector, 0, 0, kPtr, 0, 1, 1, 0},
  {ask<&E::closeFileSelector, Ptr{}>, audioMasterCloseFileSelector, 0, 0, kPtr, 0, 1, 1, 0},
};
// clang-format on

TEST(HostQueries, ANullPointerIsNeverSentToTheHost) {
  gHost.clear();
  PlainEffect fx(recordingHost);
  EXPECT_FALSE(fx.openFileSelector(nullptr) || fx.closeFileSelector(nullptr) ||
               fx.__getChunkFileDeprecated(nullptr));
  EXPECT_TRUE(gHost.calls.empty());
}

TEST(HostQueries, EachSendsExactlyItsRequestAndReadsTheAnswer) {
  for (const Query& q : kQueries) {
    SCOPED_TRACE(testing::Message() << "row " << &q - kQueries << ", host opcode " << q.opcode);
    gHost.clear();
    gHost.answers[q.opcode] = q.answer;
    PlainEffect fx(recordingHost), alone;
    fx.sampleRate = alone.sampleRate = 22050.0f;  // a host that does not answer means 44100
    EXPECT_EQ(q.ask(fx), q.result);
    const HostCall request{fx.getAeffect(), q.opcode, q.index, q.value, q.ptr, q.opt};
    EXPECT_EQ(gHost.calls, std::vector<HostCall>{request});
    EXPECT_EQ(q.ask(alone), q.resultWithoutHost);
  }
}

}  // namespace
