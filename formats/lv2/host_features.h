// What the LV2 host tells an instance at instantiation: the longest block it will run, when it
// announces one through the options feature (buf-size maxBlockLength, an atom Int, read with the
// host's urid:map). Neither feature is required; without them the caller picks its own size.
//
// Instantiation thread only (it may call the host's map function).
#pragma once

#include <lv2/core/lv2.h>

#include <cstdint>

namespace tarnwell::lv2 {

// The announced maximum block length, or 0 when the host announces none (or a value that is not
// a positive atom Int).
std::uint32_t announcedMaxBlock(const LV2_Feature* const* features) noexcept;

}  // namespace tarnwell::lv2
