#include "bench/photo_jpeg.h"

#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>

bool WritePhotoJpeg(const std::string& path, const PhotoJpeg& photo) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  jpeg_compress_struct c{};
  jpeg_error_mgr errors;
  c.err = jpeg_std_error(&errors);
  jpeg_create_compress(&c);
  jpeg_stdio_dest(&c, f);
  c.image_width = static_cast<JDIMENSION>(photo.width);
  c.image_height = static_cast<JDIMENSION>(photo.height);
  c.input_components = 3;
  c.in_color_space = JCS_RGB;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, photo.quality, TRUE);
  if (photo.progressive) jpeg_simple_progression(&c);
  if (photo.fullChroma) c.comp_info[0].h_samp_factor = c.comp_info[0].v_samp_factor = 1;
  jpeg_start_compress(&c, TRUE);
  const int w = photo.width, h = photo.height;
  std::unique_ptr<uint8_t[]> row(new uint8_t[static_cast<size_t>(w) * 3]);
  uint32_t noise = 2463534242u;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      noise ^= noise << 13, noise ^= noise >> 17, noise ^= noise << 5;
      const int grain = static_cast<int>(noise % 25) - 12;  // a camera sensor's grain
      uint8_t* p = row.get() + 3 * static_cast<size_t>(x);
      const bool band = (x / 97 + y / 131) % 7 == 0;  // sharp edges, as buildings and horizons have
      const int r = band ? 240 : 255 * x / w, g = band ? 230 : 255 * y / h;
      const int b = band ? 40 : static_cast<int>(128 + 100 * std::sin(x * 0.001 + y * 0.002));
      p[0] = static_cast<uint8_t>(std::min(255, std::max(0, r + grain)));
      p[1] = static_cast<uint8_t>(std::min(255, std::max(0, g + grain)));
      p[2] = static_cast<uint8_t>(std::min(255, std::max(0, b + grain)));
    }
    JSAMPROW rows[1] = {row.get()};
    jpeg_write_scanlines(&c, rows, 1);
  }
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  return std::fclose(f) == 0;
}
