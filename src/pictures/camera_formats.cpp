// Recognising the camera formats by their first bytes, in every build.
#include "pictures/camera_formats.h"

#include <cstring>

namespace {

uint32_t Be32(const uint8_t* p) { return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | p[3]; }

bool IsHeifBrand(const uint8_t* brand) {
  static const char* const kBrands[] = {"heic", "heix", "hevc", "heim", "heis", "mif1", "msf1", "avif", "avis"};
  for (const char* known : kBrands)
    if (std::memcmp(brand, known, 4) == 0) return true;
  return false;
}

// An ISO base media file opens with its `ftyp` box: size, "ftyp", the major
// brand, a minor version and the compatible brands to the end of the box.
bool LooksLikeHeif(const uint8_t* data, size_t size) {
  if (size < 16 || std::memcmp(data + 4, "ftyp", 4) != 0) return false;
  uint64_t boxSize = Be32(data);
  if (boxSize == 0) boxSize = size;  // the box runs to the end of the file
  if (boxSize < 16) return false;    // includes 1: a 64-bit size, which no ftyp needs
  const size_t end = static_cast<size_t>(boxSize < size ? boxSize : size);
  if (IsHeifBrand(data + 8)) return true;
  for (size_t at = 16; at + 4 <= end; at += 4)
    if (IsHeifBrand(data + at)) return true;
  return false;
}

}  // namespace

bool LooksLikeCameraFormat(const uint8_t* data, size_t size) {
  if (!data) return false;
  if (size >= 4 && (std::memcmp(data, "II*\0", 4) == 0 || std::memcmp(data, "MM\0*", 4) == 0 ||
                    std::memcmp(data, "II+\0", 4) == 0 || std::memcmp(data, "MM\0+", 4) == 0))
    return true;
  if (size >= 12 && std::memcmp(data, "RIFF", 4) == 0 && std::memcmp(data + 8, "WEBP", 4) == 0) return true;
  return LooksLikeHeif(data, size);
}
