// The one way a picture file becomes a page's picture, whoever asks (the
// page and cover tabs' Select..., the picture-open preview, a dropped file,
// quernal-cli): decoded, turned upright by its EXIF orientation, converted
// from its embedded colour profile to sRGB, transparent parts laid over the
// page's background, and reduced to kImportLongestSide on its longer side.
// Palette pictures stay palette pictures unless they must be reduced.
#pragma once
#include <cstdint>
#include <string>

#include "base/geometry.h"
#include "base/global_block.h"
#include "pictures/decoded_pixels.h"

// A photograph's longer side after import: over 300 ppi for the month
// page's picture box on A3 paper.
constexpr int32_t kImportLongestSide = 4000;
// JPEGs are decoded a band at a time and scaled while decoding, so they may
// hold this many pixels; other formats are decoded whole and stop at
// kMaxPictureBytes of picture.
constexpr uint64_t kMaxJpegPixels = 200000000;
// Other decoder libraries hand over whole pictures of four bytes a pixel.
constexpr uint64_t kMaxDecodedPixels = 100000000;

enum class ImportFormats {
  kSixRows,    // the desktop program's six formats, chosen by the file's extension
  kByContent,  // any format this build reads, chosen by the file's bytes
};

struct ImportRequest {
  Colour background = 0xFFFFFF;              // where transparent pixels show
  int32_t longestSide = kImportLongestSide;  // 0 keeps the file's size
  ImportFormats formats = ImportFormats::kSixRows;
};

struct ImportedPicture {
  BlockHandle dib = 0;  // the caller's; 0 on failure
  ImportError error = ImportError::kNone;
  // The file's picture as a viewer shows it (turned upright), before any
  // reduction, and its bit count as GetImageFileInformation reports it.
  int32_t fileWidth = 0;
  int32_t fileHeight = 0;
  uint16_t fileBitCount = 0;
  uint64_t filePixels = 0;  // with kTooLarge: what the file holds
  uint64_t maxPixels = 0;   // with kTooLarge: the most this format may hold
  bool paletteWarning = false;  // a palette or monochrome picture: warn the user
};

ImportedPicture ImportPictureFile(const char* path, const ImportRequest& request);
// Pixels another decoder made (Windows Imaging Component on a dropped
// file), imported from there as a file's would be.
ImportedPicture ImportDecodedPixels(DecodedPixels& pixels, const ImportRequest& request);
// A picture that came without a file (the clipboard's bitmap): reduced as a
// file's would be. Takes `dib` and returns it or its replacement.
BlockHandle ImportPictureDib(BlockHandle dib, const ImportRequest& request);

// True when the file's extension is one a picture this build reads by its
// content usually has (jpg, jpeg, png, heic, ...), compared without case.
bool HasPictureExtension(const char* path);
// Those extensions as "jpg, jpeg, ...".
std::string PictureExtensionList();
// The formats this build reads by content, as "JPEG, BMP, ..., AVIF".
std::string PictureFormatList();

// Why the picture could not be read, in a few words: "not a picture",
// "unsupported format", "damaged", "too large: 250 megapixels, at most 200".
std::string ImportErrorText(const ImportedPicture& picture);
