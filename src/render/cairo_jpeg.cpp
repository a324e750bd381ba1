#include "render/cairo_jpeg.h"

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>

namespace {

struct Errors {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
};

void Fail(j_common_ptr c) { std::longjmp(reinterpret_cast<Errors*>(c->err)->jump, 1); }

// libjpeg's calls behind one jump; nothing in this frame needs destroying.
bool Compress(jpeg_compress_struct* c, Errors* errors, const uint8_t* pixels, int stride, int quality,
              uint8_t* row) {
  if (setjmp(errors->jump)) return false;
  jpeg_set_defaults(c);
  jpeg_set_quality(c, quality, TRUE);
  jpeg_start_compress(c, TRUE);
  while (c->next_scanline < c->image_height) {
    const uint32_t* in = reinterpret_cast<const uint32_t*>(pixels + static_cast<size_t>(c->next_scanline) * stride);
    for (JDIMENSION x = 0; x < c->image_width; ++x) {
      row[3 * x] = static_cast<uint8_t>(in[x] >> 16);
      row[3 * x + 1] = static_cast<uint8_t>(in[x] >> 8);
      row[3 * x + 2] = static_cast<uint8_t>(in[x]);
    }
    JSAMPROW rows[1] = {row};
    jpeg_write_scanlines(c, rows, 1);
  }
  jpeg_finish_compress(c);
  return true;
}

}  // namespace

bool AttachJpeg(cairo_surface_t* image, int quality) {
  if (cairo_surface_get_type(image) != CAIRO_SURFACE_TYPE_IMAGE ||
      cairo_image_surface_get_format(image) != CAIRO_FORMAT_RGB24)
    return false;
  cairo_surface_flush(image);
  const int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
  if (width <= 0 || height <= 0) return false;
  std::vector<uint8_t> row;
  try {
    row.resize(static_cast<size_t>(width) * 3);
  } catch (...) {
    return false;
  }
  Errors errors;
  jpeg_compress_struct c{};
  c.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = Fail;
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_create_compress(&c);
  jpeg_mem_dest(&c, &bytes, &size);
  c.image_width = static_cast<JDIMENSION>(width);
  c.image_height = static_cast<JDIMENSION>(height);
  c.input_components = 3;
  c.in_color_space = JCS_RGB;
  const bool ok = Compress(&c, &errors, cairo_image_surface_get_data(image), cairo_image_surface_get_stride(image),
                           quality, row.data());
  jpeg_destroy_compress(&c);
  if (!ok || !bytes ||
      cairo_surface_set_mime_data(image, CAIRO_MIME_TYPE_JPEG, bytes, size, std::free, bytes) != CAIRO_STATUS_SUCCESS) {
    std::free(bytes);
    return false;
  }
  return true;
}
