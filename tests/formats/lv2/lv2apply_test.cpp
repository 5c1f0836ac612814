// Real clients as a user drives them: Debian's lv2apply renders a bass DI through the bundle in
// the build tree (or, with TARNWELL_LV2_DIR set, through the bundle in that folder, such as an
// installed /usr/lib/lv2), and `tarnwell render` renders the same file with the same dial settings.
// Both run the same double chain and write float files but start differently: lv2apply's fresh
// instance fades in over its first (one-sample) run, while the command first runs its instance
// on silence until settled. Past the start the two files agree within float rounding.
//
// Measured on the 6.3 s demo riff at 44100 Hz with DEEP on, BASS 7, TREBLE 4.5, MASTER 3 (peak
// 0.52): the largest difference is 0 from the first sample on, since the riff starts from
// silence and the fade meets no signal. (Before the command settled its instance, its own fade
// over the first 4096-sample block made the files differ by up to 0.39 there, by 1.5e-8 from
// sample 10000 and by 2.9e-11 from sample 44100.) The test compares from sample 44100 (1 s) on,
// with one float rounding step at the peak (6e-8) as the bound.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "../../host/host_test_support.h"
#include "formats/lv2/ports.h"

namespace {

using namespace host_test;

constexpr std::size_t kCompareFrom = 44100;
constexpr char kLv2Apply[] = "/usr/bin/lv2apply";

TEST(Lv2Apply, RendersAsTheCommandDoesOncePastTheStart) {
  if (!fs::exists(kLv2Apply))
    GTEST_SKIP() << "lv2apply is not installed (Debian package lilv-utils)";
  const ScratchDir dir;
  ASSERT_EQ(runCommand({"demo", dir.path}).exitCode, 0);
  const char* bundleDir = std::getenv("TARNWELL_LV2_DIR");
  ASSERT_EQ(setenv("LV2_PATH", bundleDir != nullptr ? bundleDir : TARNWELL_LV2_DIR, 1), 0);
  const Result lv2 = runCommand(
      {"-i", dir / "demo-dry.wav", "-o", dir / "lv2apply.wav", "-c", "deep", "1", "-c", "bass", "7",
       "-c", "treble", "4.5", "-c", "master", "3", tarnwell::lv2::kPluginUri},
      kLv2Apply);
  ASSERT_EQ(lv2.exitCode, 0) << lv2.err;
  ASSERT_EQ(runCommand({"render", "-q", dir / "demo-dry.wav", dir / "render.wav", "--deep", "on",
                        "--bass", "7", "--treble", "4.5", "--master", "3"})
                .exitCode,
            0);

  const Audio fromLv2 = readAudio(dir / "lv2apply.wav"),
              fromCommand = readAudio(dir / "render.wav");
  ASSERT_EQ(fromLv2.info.samplerate, fromCommand.info.samplerate);
  ASSERT_EQ(fromLv2.info.channels, 1);
  ASSERT_EQ(fromLv2.samples.size(), fromCommand.samples.size());
  ASSERT_GT(fromLv2.samples.size(), 2 * kCompareFrom);

  double largest = 0.0, peak = 0.0;
  for (std::size_t i = kCompareFrom; i < fromLv2.samples.size(); ++i) {
    largest = std::max(largest, std::fabs(fromLv2.samples[i] - fromCommand.samples[i]));
    peak = std::max(peak, std::fabs(fromCommand.samples[i]));
  }
  std::printf("from sample %zu: largest difference %.3g, peak %.3f\n", kCompareFrom, largest, peak);
  EXPECT_GT(peak, 0.05) << "the command's render is all but silent";
  // One rounding step of a float at the peak.
  EXPECT_LE(largest, std::ldexp(peak, -23)) << "from sample " << kCompareFrom;
}

}  // namespace
