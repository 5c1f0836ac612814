// A bank: an owned array of owned IIRFilter pointers, as the effect keeps its filter stages.
// Set-up only (host control thread); nothing here runs on the audio thread.
#pragma once

#include "dsp/iirfilter.h"
#include "hostif/vst_abi.h"

// Designs one bank of `count` filters at `sampleRate` from the parallel tables. Returns null,
// with nothing left allocated, when memory runs out.
IIRFilter** buildBank(VstInt32 count, const VstInt32* nums, const double* freqs, const double* qs,
                      const double* gains, double sampleRate) noexcept;

// Deletes every non-null filter of the bank and the array itself, and nulls the pointer.
void freeBank(IIRFilter**& bank, VstInt32 count) noexcept;

// One filter of the given design, or null when memory runs out.
IIRFilter* buildFilter(VstInt32 num, double freq, double q, double gain,
                       double sampleRate) noexcept;
