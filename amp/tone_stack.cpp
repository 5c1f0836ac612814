#include "amp/tarnwell.h"
#include "amp/tone_stack_design.h"

void Tarnwell::redesignToneStack(float deepValue, float trebleValue, float bassValue, int n) {
  const ToneStackDesign design =
      designToneStack(deepValue != 0.0f, bassValue, trebleValue, freqOffset, trimGain);
  appliedTrim = design.trim;
  for (const int k : kBandCallOrder) {
    // A fresh record per band: nothing the design writes back carries over to the next.
    filterPrm_tag prm = bandRecord(design.band[k], curSampleRate);
    eqFilters[k]->ipFDexcute(&prm, n);
  }
}
