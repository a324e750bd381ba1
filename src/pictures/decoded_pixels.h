// Pixels as a decoder library hands them over (TIFF, WebP, HEIF and AVIF
// natively, anything Windows Imaging Component reads in the Windows
// program), before the import turns them into a page's picture.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// Why a file did not become a picture.
enum class ImportError {
  kNone,
  kUnreadableFile,  // missing, a folder, or cannot be opened or read
  kNotAPicture,     // no picture format the program knows holds these bytes
  kUnsupported,     // a picture format, or a variant of one, this program does not read
  kDamaged,         // a known format whose data is broken
  kTooLarge,        // more pixels than the program reads
  kOutOfMemory,
};

struct DecodedPixels {
  std::unique_ptr<uint8_t[]> rgba;  // width x height x 4 bytes, top row first, straight alpha
  int32_t width = 0;
  int32_t height = 0;
  bool hasAlpha = false;      // false: every alpha byte is 255
  std::vector<uint8_t> icc;   // the file's embedded colour profile; empty means sRGB
  int orientation = 1;        // EXIF orientation 1..8 still to apply; 1 when upright as stored
  ImportError error = ImportError::kNone;
  uint64_t filePixels = 0;    // with kTooLarge: the pixels the file holds
};
