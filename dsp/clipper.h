// Waveshaper table: an asymmetric saturating curve sampled at 40001 points over the input range
// -1..+1, read with clamping and linear interpolation.
//
//   entry i belongs to the input (i - 20000) / 20000
//   clipLookup(c, u) = (next - table[i]) * t + table[i],  p = scale + v * scale, i = (int)p,
//   t = p - i, v = u clamped to -1..+1, next = table[i + 1] (guard when i = 40000)
//
// Building runs on a host control thread and needs a heap scratch record of the table's size;
// the lookup runs on the audio thread: inline, noexcept, no library call, reads only.
#pragma once

constexpr int kClipCentre = 20000;          // entry of input 0
constexpr int kClipLast = 2 * kClipCentre;  // entry of input +1
constexpr int kClipSize = kClipLast + 1;    // entries in a table
constexpr double kClipScale = 20000.0;      // table steps per unit of input

struct Clipper {
  Clipper() = default;
  Clipper(const Clipper&) = default;
  Clipper& operator=(const Clipper&) = default;
  // Static storage for the life of the module; nothing to release.
  ~Clipper() {}

  double scale;             // kClipScale once built, 0 before
  double table[kClipSize];  // curve values
  double guard;             // curve at +1 once more: right neighbour of the last entry
};

// Shapes one sample. Inputs beyond +-1 read the end values; NaN reads as input 0, so a fault
// upstream yields silence here instead of an undefined index. The table must have been built
// (or be all zero, which reads 0 everywhere).
inline double clipLookup(const Clipper& c, double u) noexcept {
  const double v = u > 1.0 ? 1.0 : u < -1.0 ? -1.0 : u == u ? u : 0.0;
  const double p = c.scale + v * c.scale;
  const int i = static_cast<int>(p);
  const double t = p - i;
  const double next = i < kClipLast ? c.table[i + 1] : c.guard;
  return (next - c.table[i]) * t + c.table[i];
}

// Fills `target` with the first-stage curve for oversampling factor F:
//   u >= 0: tanh(7.82 F u)        u < 0: 0.563 tanh(13.8898756660746 F u)
// Returns false, leaving `target` untouched, when the scratch record cannot be allocated.
bool buildFirstStageCurve(Clipper& target, double F);

// Fills `target` with the second-stage curve:
//   u >= 0: 0.365 tanh(103.534246575342 u)        u < 0: tanh(37.79 u)
// Returns false, leaving `target` untouched, when the scratch record cannot be allocated.
bool buildSecondStageCurve(Clipper& target);
