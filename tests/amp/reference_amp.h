// A literal, unoptimised transcription of the amplifier's documented arithmetic, written apart from
// the plug-in: its own design tables, filters and waveshaper tables, the chain step by step through
// osBuffer[0], the up-filter run with x = 0 on the zero-stuffed sub-samples. The plug-in must match
// it bit for bit. A 0-sample block with a redesign pending ramps over 1, as the plug-in chose.
#pragma once

#include <memory>
#include <vector>

#include "dsp/clipper.h"
#include "dsp/flush_to_zero.h"
#include "dsp/iirfilter.h"

class ReferenceAmp {
 public:
  explicit ReferenceAmp(double rate)
      : rate_(rate), factor_(static_cast<int>(rate) == 48000 ? 7 : 8) {
    const double sets[2][8] = {
        {4.3340205266, -7.6863338537, 6.9585653542, -3.2117410641, 0.60412218845, 7.9436823833e-05,
         0.0002311408766, 0.00037284656245},
        {4.3724453427, -7.8055159894, 7.0990889142, -3.2858647219, 0.61876405319, 6.6396688505e-05,
         0.00018318063956, 0.00029162325912}};
    const double* set = sets[factor_ == 7 ? 0 : 1];
    for (int k = 0; k < 5; ++k) a_[k] = set[k];
    for (int k = 0; k < 3; ++k) b_[k] = b_[5 - k] = set[5 + k];
    buildFirstStageCurve(*clip0_, factor_);
    buildSecondStageCurve(*clip1_);
    first_ = {design(1, 26.0, 1.0, 0.0, rate), design(0, 18000.0, 1.0, 0.0, rate)};
    eq_ = {design(7, 15.0, 0.65, 0.0, rate),       design(11, 32.34, 1.0, -10.2, rate),
           design(10, 269.96, 1.034, -18.5, rate), design(12, 1781.78, 1.0, -5.7, rate),
           design(10, 612.0, 5.0, -5.1, rate),     design(10, 2500.0, 3.0, 0.0, rate),
           design(10, 1300.0, 9.0, 8.0, rate)};
    master_ = {design(11, 80.0, 1.0, -2.1, rate * factor_)};
    final_ = {design(1, 30.0, 1.0, 0.0, rate), design(0, 2700.0, 1.0, 0.0, rate)};
    outHighPass_ = {design(1, 20.0, 1.0, 0.0, rate)};
  }

  // A parameter store as the plug-in keeps it: a float by index 1..5.
  void set(int index, float value) { param_[index] = value; }

  void process(const double* in, double* out, int n) {
    FlushToZeroGuard ftz;
    const float deep = param_[1], treble = param_[3], bass = param_[4];
    const double volume = param_[2], master = param_[5];
    if (deep != lastDeep_ || bass != lastBass_ || treble != lastTreble_) redesign(n < 1 ? 1 : n);
    const double r = n > 1 ? 1.0 / (n - 1) : 0.0;
    const double volumeStep = (volume - lastVolume_) * r;
    const double masterStep = (master - lastMaster_) * r;
    double c = 0.0;
    for (int i = 0; i < n; ++i) {
      osBuffer_[0] = in[i];
      for (IIRFilter& f : first_) f.iirProcessing(&osBuffer_[0]);
      for (IIRFilter& f : eq_) f.ipIirProcessing(&osBuffer_[0]);
      osBuffer_[0] = (c * volumeStep + lastVolume_) * osBuffer_[0];
      const double g = lastMaster_ + c * masterStep;
      for (int s = 0; s < factor_; ++s) {
        const double y = fifthOrder(upState_, s == 0 ? osBuffer_[0] : 0.0);
        double v = clipLookup(*clip0_, y);
        master_[0].iirProcessing(&v);
        v = v * g;
        const double z = fifthOrder(downState_, clipLookup(*clip1_, v));
        if (s == 0) osBuffer_[0] = z;
      }
      double w = osBuffer_[0];
      for (IIRFilter& f : final_) f.iirProcessing(&w);
      outHighPass_[0].iirProcessing(&w);
      out[i] = w * appliedTrim_;
      c += 1.0;
    }
    lastDeep_ = deep, lastVolume_ = volume, lastTreble_ = treble, lastBass_ = bass;
    lastMaster_ = master;
  }

 private:
  static IIRFilter design(int num, double freq, double q, double gain, double rate) {
    filterPrm_tag prm{num, freq, 0.0, 0.0, q, gain, rate};
    return IIRFilter(&prm);
  }

  // One step of the fifth-order oversampling low-pass on its own state.
  double fifthOrder(double* s, double x) {
    const double y = b_[0] * x + s[0];
    s[0] = b_[1] * x + a_[0] * y + s[1];
    s[1] = b_[2] * x + a_[1] * y + s[2];
    s[2] = b_[3] * x + a_[2] * y + s[3];
    s[3] = b_[4] * x + a_[3] * y + s[4];
    s[4] = b_[5] * x + a_[4] * y;
    return y;
  }

  void redesign(int n) {
    const double b = param_[4], t = param_[3];
    filterPrm_tag prm[7];
    const auto band = [&](int k, int num, double freq, double q, double gain) {
      prm[k] = {num, freq, 0.0, 0.0, q, gain, rate_};
    };
    const double bassFreq = (17.534 + 400.0) + ((42.196 * b - 89.511) * b + 63.81) * b;
    if (param_[1] != 0.0f) {
      appliedTrim_ = kTrim;
      band(0, 7, 15.0, 0.65, 0.0);
      band(1, 11, bassFreq, 1.0, (((-184.72 * b + 589.69) * b - 692.74) * b + 359.93) * b - 79.16);
      band(2, 10, ((-746.79 * t + 1593.6) * t - 1195.1) * t + 562.46,
           ((1.9999 * t - 4.0834) * t + 2.7592) * t + 0.4256, -18.5);
      band(3, 12, (1779.2 * t - 229.28) * t + 1450.0, 1.0, 21.602 * t - 16.404);
      band(4, 10, 612.0, 5.0, t > 0.5 ? (t - 1.0) + t : 0.0);
      band(5, 10, 2500.0, 3.0, t > 0.5 ? 8.0 * t - 4.0 : 0.0);
      band(6, 10, 1300.0, 9.0, 0.0);
    } else {
      band(0, 7, 18.0, 0.63, 0.0);
      band(1, 11, bassFreq, 1.0, b * (-23.659 * b + 46.511) - 25.379);
      band(2, 10, ((-1177.9 * t + 2527.2) * t - 1826.6) * t + 636.25,
           ((3.6967 * t - 7.7161) * t + 5.4358) * t + 0.3869,
           ((0.8896 * t - 2.4272) * t + 3.235) * t - 26.995);
      band(3, 12, ((-54293.0 * t + 104596.0) * t - 65833.0) * t + 15532.0, 1.0,
           ((-19.486 * t + 41.818) * t - 22.574) - 7.0);
      band(4, 10, 612.0, 5.0, t > 0.5 ? (t - 0.5) * 20.4 - 5.1 : -5.1);
      band(5, 10, 2500.0, 3.0, t > 0.5 ? 24.0 * t - 12.0 : 0.0);
      band(6, 10, 1300.0, 9.0, t > 0.5 ? 16.0 * t - 8.0 : 0.0);
      appliedTrim_ = t <= 0.5 ? 0.8 * kTrim : (0.4 * t + 0.8) * kTrim;
    }
    for (int k : {0, 1, 2, 3, 5, 6, 4}) eq_[k].ipFDexcute(&prm[k], n);
  }

  static constexpr double kTrim = 0.562341325;
  const double rate_;
  const int factor_;
  double a_[5], b_[6];
  double upState_[6] = {}, downState_[6] = {};
  double osBuffer_[8] = {};  // the chain passes through [0]
  std::vector<IIRFilter> first_, eq_, master_, final_, outHighPass_;
  std::unique_ptr<Clipper> clip0_ = std::make_unique<Clipper>();
  std::unique_ptr<Clipper> clip1_ = std::make_unique<Clipper>();
  float param_[6] = {0.0f, 0.0f, 0.5f, 0.5f, 0.5f, 0.5f};
  float lastDeep_ = 0.0f, lastTreble_ = -1.0f, lastBass_ = -1.0f;
  double lastVolume_ = 0.0, lastMaster_ = 0.0;
  double appliedTrim_ = kTrim;
};
