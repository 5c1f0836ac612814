// Reads a picture back: a PNG through Cairo, an SVG's size from its root element's width and
// height. A size of {0, 0} when the bytes are neither.
#pragma once

#include <cairo.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace plot_test {

// The decoded image, to be destroyed by the caller; its status tells whether the bytes were a PNG.
inline cairo_surface_t* decodePng(const std::string& bytes) {
  struct Reader {
    const std::string* bytes;
    std::size_t pos = 0;
  } reader{&bytes};
  return cairo_image_surface_create_from_png_stream(
      [](void* closure, unsigned char* data, unsigned int length) {
        auto* r = static_cast<Reader*>(closure);
        if (r->pos + length > r->bytes->size()) return CAIRO_STATUS_READ_ERROR;
        std::memcpy(data, r->bytes->data() + r->pos, length);
        r->pos += length;
        return CAIRO_STATUS_SUCCESS;
      },
      &reader);
}

inline std::pair<int, int> pngSize(const std::string& bytes) {
  cairo_surface_t* surface = decodePng(bytes);
  std::pair<int, int> size{0, 0};
  if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS)
    size = {cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface)};
  cairo_surface_destroy(surface);
  return size;
}

inline std::pair<int, int> svgSize(const std::string& bytes) {
  const auto root = bytes.find("<svg");
  if (bytes.rfind("<?xml", 0) != 0 || root == std::string::npos ||
      bytes.find("</svg>") == std::string::npos)
    return {0, 0};
  int width = 0;
  int height = 0;
  const auto attribute = [&](const char* name, int& value) {
    const auto at = bytes.find(name, root);
    if (at != std::string::npos)
      std::sscanf(bytes.c_str() + at + std::strlen(name), "%dpx", &value);
  };
  attribute(" width=\"", width);
  attribute(" height=\"", height);
  return {width, height};
}

}  // namespace plot_test
