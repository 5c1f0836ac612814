// The waveshaper table read of the oversampled section, two lanes at a time. Audio thread;
// inline, no branch, no call.
#pragma once

#include <cstddef>

#include "dsp/clipper.h"
#include "dsp/two_lanes.h"

namespace chain {

static_assert(offsetof(Clipper, guard) == offsetof(Clipper, table) + kClipSize * sizeof(double),
              "the guard is the right-hand neighbour of the last entry");

// Two waveshaper reads at once, lane 0 in table c0 and lane 1 in table c1. For every input but NaN
// each lane gives clipLookup's result bit for bit, without branches:
// - the clamp is a min and a max, which keep every in-range value (-0 included) exactly;
// - p = scale + v * scale with the built tables' scale, i = (int)p, t = p - i;
// - an entry and its right-hand neighbour come in one 16-byte load; for the last entry that
//   neighbour is the record's guard, as in clipLookup;
// - (next - here) * t + here.
// A NaN reads as +1 (the clamp keeps the limit for it), so the index stays in the table.
// The chain keeps NaN away from here (see Block), so this is only the last line of defence.
[[gnu::always_inline]] inline lanes::Lanes lookupPair(const Clipper& c0, const Clipper& c1,
                                                      lanes::Lanes u) noexcept {
  const lanes::Lanes scale = lanes::both(kClipScale);
  const lanes::Lanes v = lanes::atLeast(lanes::atMost(u, lanes::both(1.0)), lanes::both(-1.0));
  const lanes::Lanes p = scale + v * scale;
  const lanes::LaneIndices i = lanes::truncated(p);
  const lanes::Lanes t = p - lanes::widened(i);
  const lanes::Lanes pair0 = lanes::loadPair(&c0.table[i[0]]);
  const lanes::Lanes pair1 = lanes::loadPair(&c1.table[i[1]]);
  const lanes::Lanes here = lanes::lows(pair0, pair1);
  const lanes::Lanes next = lanes::highs(pair0, pair1);
  return (next - here) * t + here;
}

}  // namespace chain
