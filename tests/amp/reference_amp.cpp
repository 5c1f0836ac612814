#include "reference_amp.h"

#include "dsp/flush_to_zero.h"

namespace amp_test {

namespace {

constexpr double kTrim = 0.562341325;
constexpr double kOffset = 400.0;

std::unique_ptr<IIRFilter> design(int num, double freq, double q, double gain, double rate) {
  filterPrm_tag prm{};
  prm.num = num;
  prm.freq = freq;
  prm.freqLo = 0.0;
  prm.freqHi = 0.0;
  prm.q = q;
  prm.gain = gain;
  prm.sampleRate = rate;
  return std::make_unique<IIRFilter>(&prm);
}

}  // namespace

ReferenceAmp::ReferenceAmp(double rate) : rate_(rate) {
  if (static_cast<int>(rate) == 48000) {
    factor_ = 7;
    const double a[5] = {4.3340205266, -7.6863338537, 6.9585653542, -3.2117410641, 0.60412218845};
    const double b[3] = {7.9436823833e-05, 0.0002311408766, 0.00037284656245};
    for (int k = 0; k < 5; ++k) a_[k] = a[k];
    for (int k = 0; k < 3; ++k) b_[k] = b_[5 - k] = b[k];
  } else {
    factor_ = 8;
    const double a[5] = {4.3724453427, -7.8055159894, 7.0990889142, -3.2858647219, 0.61876405319};
    const double b[3] = {6.6396688505e-05, 0.00018318063956, 0.00029162325912};
    for (int k = 0; k < 5; ++k) a_[k] = a[k];
    for (int k = 0; k < 3; ++k) b_[k] = b_[5 - k] = b[k];
  }
  osBuffer_.assign(factor_, 0.0);
  appliedTrim_ = kTrim;

  clip0_ = std::make_unique<Clipper>();
  clip1_ = std::make_unique<Clipper>();
  buildFirstStageCurve(*clip0_, factor_);
  buildSecondStageCurve(*clip1_);

  first_.push_back(design(1, 26.0, 1.0, 0.0, rate));
  first_.push_back(design(0, 18000.0, 1.0, 0.0, rate));
  eq_.push_back(design(7, 15.0, 0.65, 0.0, rate));
  eq_.push_back(design(11, 32.34, 1.0, -10.2, rate));
  eq_.push_back(design(10, 269.96, 1.034, -18.5, rate));
  eq_.push_back(design(12, 1781.78, 1.0, -5.7, rate));
  eq_.push_back(design(10, 612.0, 5.0, -5.1, rate));
  eq_.push_back(design(10, 2500.0, 3.0, 0.0, rate));
  eq_.push_back(design(10, 1300.0, 9.0, 8.0, rate));
  master_filter_ = design(11, 80.0, 1.0, -2.1, rate * factor_);
  final_.push_back(design(1, 30.0, 1.0, 0.0, rate));
  final_.push_back(design(0, 2700.0, 1.0, 0.0, rate));
  outHighPass_ = design(1, 20.0, 1.0, 0.0, rate);
}

void ReferenceAmp::redesign(int n) {
  const double b = bass_;
  const double t = treble_;
  int num[7];
  double freq[7], q[7], gain[7];
  const double bassFreq = (17.534 + kOffset) + ((42.196 * b - 89.511) * b + 63.81) * b;
  if (deep_ != 0.0f) {
    appliedTrim_ = kTrim;
    num[0] = 7, freq[0] = 15.0, q[0] = 0.65, gain[0] = 0.0;
    num[1] = 11, freq[1] = bassFreq, q[1] = 1.0;
    gain[1] = (((-184.72 * b + 589.69) * b - 692.74) * b + 359.93) * b - 79.16;
    num[2] = 10, freq[2] = ((-746.79 * t + 1593.6) * t - 1195.1) * t + 562.46;
    q[2] = ((1.9999 * t - 4.0834) * t + 2.7592) * t + 0.4256, gain[2] = -18.5;
    num[3] = 12, freq[3] = (1779.2 * t - 229.28) * t + 1450.0, q[3] = 1.0;
    gain[3] = 21.602 * t - 16.404;
    num[4] = 10, freq[4] = 612.0, q[4] = 5.0, gain[4] = t > 0.5 ? (t - 1.0) + t : 0.0;
    num[5] = 10, freq[5] = 2500.0, q[5] = 3.0, gain[5] = t > 0.5 ? 8.0 * t - 4.0 : 0.0;
    num[6] = 10, freq[6] = 1300.0, q[6] = 9.0, gain[6] = 0.0;
  } else {
    num[0] = 7, freq[0] = 18.0, q[0] = 0.63, gain[0] = 0.0;
    num[1] = 11, freq[1] = bassFreq, q[1] = 1.0, gain[1] = b * (-23.659 * b + 46.511) - 25.379;
    num[2] = 10, freq[2] = ((-1177.9 * t + 2527.2) * t - 1826.6) * t + 636.25;
    q[2] = ((3.6967 * t - 7.7161) * t + 5.4358) * t + 0.3869;
    gain[2] = ((0.8896 * t - 2.4272) * t + 3.235) * t - 26.995;
    num[3] = 12, freq[3] = ((-54293.0 * t + 104596.0) * t - 65833.0) * t + 15532.0, q[3] = 1.0;
    gain[3] = ((-19.486 * t + 41.818) * t - 22.574) - 7.0;
    num[4] = 10, freq[4] = 612.0, q[4] = 5.0, gain[4] = t > 0.5 ? (t - 0.5) * 20.4 - 5.1 : -5.1;
    num[5] = 10, freq[5] = 2500.0, q[5] = 3.0, gain[5] = t > 0.5 ? 24.0 * t - 12.0 : 0.0;
    num[6] = 10, freq[6] = 1300.0, q[6] = 9.0, gain[6] = t > 0.5 ? 16.0 * t - 8.0 : 0.0;
    appliedTrim_ = t <= 0.5 ? 0.8 * kTrim : (0.4 * t + 0.8) * kTrim;
  }
  const int order[7] = {0, 1, 2, 3, 5, 6, 4};
  for (int k : order) {
    filterPrm_tag prm{};
    prm.num = num[k];
    prm.freq = freq[k];
    prm.freqLo = 0.0;
    prm.freqHi = 0.0;
    prm.q = q[k];
    prm.gain = gain[k];
    prm.sampleRate = rate_;
    eq_[k]->ipFDexcute(&prm, n);
  }
}

double ReferenceAmp::up(double x) {
  double* s = upState_;
  const double y = b_[0] * x + s[0];
  s[0] = b_[1] * x + a_[0] * y + s[1];
  s[1] = b_[2] * x + a_[1] * y + s[2];
  s[2] = b_[3] * x + a_[2] * y + s[3];
  s[3] = b_[4] * x + a_[3] * y + s[4];
  s[4] = b_[5] * x + a_[4] * y;
  return y;
}

double ReferenceAmp::down(double u) {
  double* t = downState_;
  const double z = b_[0] * u + t[0];
  t[0] = b_[1] * u + a_[0] * z + t[1];
  t[1] = b_[2] * u + a_[1] * z + t[2];
  t[2] = b_[3] * u + a_[2] * z + t[3];
  t[3] = b_[4] * u + a_[3] * z + t[4];
  t[4] = b_[5] * u + a_[4] * z;
  return z;
}

void ReferenceAmp::process(const double* in, double* out, int n) {
  FlushToZeroGuard ftz;
  if (deep_ != lastDeep_ || bass_ != lastBass_ || treble_ != lastTreble_) {
    redesign(n < 1 ? 1 : n);
  }
  const double r = n > 1 ? 1.0 / (n - 1) : 0.0;
  const double volumeStep = (volume_ - lastVolume_) * r;
  const double masterStep = (master_ - lastMaster_) * r;
  double c = 0.0;
  for (int i = 0; i < n; ++i) {
    osBuffer_[0] = in[i];
    for (auto& f : first_) f->iirProcessing(&osBuffer_[0]);
    for (auto& f : eq_) f->ipIirProcessing(&osBuffer_[0]);
    osBuffer_[0] = (c * volumeStep + lastVolume_) * osBuffer_[0];
    const double g = lastMaster_ + c * masterStep;
    for (int s = 0; s < factor_; ++s) {
      const double x = s == 0 ? osBuffer_[0] : 0.0;
      const double y = up(x);
      double v = clipLookup(*clip0_, y);
      master_filter_->iirProcessing(&v);
      v = v * g;
      const double u = clipLookup(*clip1_, v);
      const double z = down(u);
      if (s == 0) osBuffer_[0] = z;
    }
    double w = osBuffer_[0];
    for (auto& f : final_) f->iirProcessing(&w);
    outHighPass_->iirProcessing(&w);
    out[i] = w * appliedTrim_;
    c += 1.0;
  }
  lastDeep_ = deep_;
  lastVolume_ = volume_;
  lastTreble_ = treble_;
  lastBass_ = bass_;
  lastMaster_ = master_;
}

}  // namespace amp_test
