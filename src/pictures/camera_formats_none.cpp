// The camera formats in builds without their libraries (Windows, where the
// program reads them through Windows Imaging Component instead, and the
// fuzzing build): recognised, not read.
#include "pictures/camera_formats.h"

DecodedPixels DecodeCameraFormat(const uint8_t* data, size_t size, uint64_t) {
  DecodedPixels pixels;
  pixels.error = LooksLikeCameraFormat(data, size) ? ImportError::kUnsupported : ImportError::kNotAPicture;
  return pixels;
}
