#include "picture_check.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "test_support.h"

namespace tooltest {
namespace {

uint32_t Crc32(const unsigned char* data, std::size_t size) {
  static const std::array<uint32_t, 256> table = [] {
    std::array<uint32_t, 256> t{};
    for (uint32_t n = 0; n < 256; ++n) {
      uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[n] = c;
    }
    return t;
  }();
  uint32_t crc = 0xFFFFFFFFu;
  for (std::size_t i = 0; i < size; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
  return crc ^ 0xFFFFFFFFu;
}

uint32_t BigEndian(const unsigned char* p) {
  return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

}  // namespace

PngSummary CheckPng(const std::string& path) {
  PngSummary summary;
  const std::string bytes = rvtest::ReadFile(path);
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  static const unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (bytes.size() < 8 || !std::equal(kSignature, kSignature + 8, data)) {
    summary.problem = "no PNG signature";
    return summary;
  }
  std::size_t at = 8;
  bool first = true, ended = false;
  while (at < bytes.size()) {
    if (ended) {
      summary.problem = "bytes after IEND";
      return summary;
    }
    if (bytes.size() - at < 12) {
      summary.problem = "truncated chunk";
      return summary;
    }
    const uint32_t length = BigEndian(data + at);
    if (length > bytes.size() - at - 12) {
      summary.problem = "chunk runs past the end";
      return summary;
    }
    const std::string type(bytes.data() + at + 4, 4);
    if (Crc32(data + at + 4, length + 4) != BigEndian(data + at + 8 + length)) {
      summary.problem = "bad CRC in " + type;
      return summary;
    }
    if (first && (type != "IHDR" || length != 13)) {
      summary.problem = "IHDR isn't first";
      return summary;
    }
    if (first) {
      summary.width = static_cast<int>(BigEndian(data + at + 8));
      summary.height = static_cast<int>(BigEndian(data + at + 12));
    }
    first = false;
    ended = type == "IEND";
    at += 12 + length;
  }
  if (!ended) {
    summary.problem = "no IEND";
    return summary;
  }

  cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
  if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
    summary.problem = "cairo can't decode it";
    cairo_surface_destroy(image);
    return summary;
  }
  cairo_surface_flush(image);
  const int stride = cairo_image_surface_get_stride(image);
  const unsigned char* pixels = cairo_image_surface_get_data(image);
  for (int y = 0; y < cairo_image_surface_get_height(image); ++y) {
    for (int x = 0; x < cairo_image_surface_get_width(image); ++x) {
      const uint32_t argb = *reinterpret_cast<const uint32_t*>(pixels + y * stride + 4 * x);
      const int r = (argb >> 16) & 0xFF, g = (argb >> 8) & 0xFF, b = argb & 0xFF;
      // Lines are antialiased: classify by hue and darkness, not exact colour.
      const int high = std::max({r, g, b}), low = std::min({r, g, b});
      if (high < 110 && high - low < 16) ++summary.black;
      if (low > 250) ++summary.white;
      if (r - g > 60 && r - b > 60) ++summary.red;
      if (b - r > 20 && b > 150) ++summary.blue;
    }
  }
  cairo_surface_destroy(image);
  summary.valid = true;
  return summary;
}

}  // namespace tooltest
