#include "formats/lv2/host_features.h"

#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <cstring>

namespace tarnwell::lv2 {

namespace {

const void* featureData(const LV2_Feature* const* features, const char* uri) noexcept {
  if (features == nullptr) return nullptr;
  for (const LV2_Feature* const* f = features; *f != nullptr; ++f) {
    if ((*f)->URI != nullptr && std::strcmp((*f)->URI, uri) == 0) return (*f)->data;
  }
  return nullptr;
}

}  // namespace

std::uint32_t announcedMaxBlock(const LV2_Feature* const* features) noexcept {
  const auto* map = static_cast<const LV2_URID_Map*>(featureData(features, LV2_URID__map));
  const auto* options =
      static_cast<const LV2_Options_Option*>(featureData(features, LV2_OPTIONS__options));
  if (map == nullptr || map->map == nullptr || options == nullptr) return 0;

  const LV2_URID maxBlockKey = map->map(map->handle, LV2_BUF_SIZE__maxBlockLength);
  const LV2_URID intType = map->map(map->handle, LV2_ATOM__Int);
  for (const LV2_Options_Option* o = options; o->key != 0 || o->value != nullptr; ++o) {
    if (o->context != LV2_OPTIONS_INSTANCE || o->key != maxBlockKey) continue;
    if (o->type != intType || o->size != sizeof(std::int32_t) || o->value == nullptr) continue;
    const std::int32_t length = *static_cast<const std::int32_t*>(o->value);
    return length > 0 ? static_cast<std::uint32_t>(length) : 0;
  }
  return 0;
}

}  // namespace tarnwell::lv2
