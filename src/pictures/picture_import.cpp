#include "pictures/picture_import.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "base/dib.h"
#include "base/regular_file.h"
#include "base/text.h"
#include "pictures/byte_source.h"
#include "pictures/camera_formats.h"
#include "pictures/colour_profile.h"
#include "pictures/exif_orientation.h"
#include "pictures/image_files.h"
#include "pictures/format_readers.h"
#include "pictures/picture_kind.h"
#include "pictures/resampler.h"

namespace {

constexpr int kJpeg = 0, kBmp = 1, kGif = 2, kPcx = 3, kTga = 4, kPng = 5;
constexpr int kCameraFormat = 6;

// The six formats' extensions come from their table; these are the other
// names the same formats go by, and the formats the decoder libraries add.
const char* const kOtherExtensions[] = {"jpeg", "jpe", "jfif", "tif", "tiff", "webp", "heic", "heif", "hif", "avif"};
const char* const kOtherFormats[] = {"TIFF", "WebP", "HEIC/HEIF", "AVIF"};

bool StartsWith(const uint8_t* data, size_t size, const char* magic, size_t n) {
  return size >= n && std::memcmp(data, magic, n) == 0;
}

// The format the bytes hold; TGA, which has no signature, only by its name.
int FormatOfContent(const uint8_t* data, size_t size, const char* path) {
  if (StartsWith(data, size, "\xFF\xD8\xFF", 3)) return kJpeg;
  if (StartsWith(data, size, "\x89PNG\r\n\x1A\n", 8)) return kPng;
  if (StartsWith(data, size, "GIF87a", 6) || StartsWith(data, size, "GIF89a", 6)) return kGif;
  if (StartsWith(data, size, "BM", 2)) return kBmp;
  if (size >= 128 && data[0] == 0x0A && data[1] <= 5 && data[2] == 1) return kPcx;
  if (LooksLikeCameraFormat(data, size)) return kCameraFormat;
  if (FindImageFormat(path) == kTga) return kTga;
  return -1;
}

// The most pixels format `index` may hold: JPEGs are decoded a band at a
// time, the others into a whole Dib of the header's bit count.
uint64_t MaxPixelsOf(int index, uint16_t bitCount) {
  return index == kJpeg ? kMaxJpegPixels : static_cast<uint64_t>(kMaxPictureBytes) * 8 / (bitCount ? bitCount : 24);
}

// `dib` brought down to `longest` on its longer side (freed when replaced);
// when memory runs out, 0 with `mustFit`, else `dib` as it was.
BlockHandle ReducedToFit(BlockHandle dib, int32_t longest, bool mustFit) {
  if (!DibBlockIsValid(dib)) return dib;
  BitmapInfoHeader stored;
  {
    BlockLock lock(dib);
    stored = *lock.as<BitmapInfoHeader>();
  }
  const int32_t height = stored.biHeight < 0 ? -stored.biHeight : stored.biHeight;
  int32_t w, h;
  ReducedSize(stored.biWidth, height, longest, &w, &h);
  if (w == stored.biWidth && h == height) return dib;
  const BlockHandle reduced = ResampleDib(dib, w, h);
  if (!reduced && !mustFit) return dib;
  GlobalBlockFree(dib);
  return reduced;
}

// Each pixel laid over the background, then the rows reduced.
BlockHandle FromDecodedPixels(DecodedPixels& pixels, const ImportRequest& request) {
  const size_t count = static_cast<size_t>(pixels.width) * static_cast<size_t>(pixels.height);
  const ToSrgb profile(pixels.icc, PixelLayout::kRgba);
  if (profile) profile.Convert(pixels.rgba.get(), pixels.rgba.get(), count);
  int32_t w, h;
  ReducedSize(pixels.width, pixels.height, request.longestSide, &w, &h);
  DibResampler reducer(pixels.width, pixels.height, w, h, 3);
  std::unique_ptr<uint8_t[]> row(new (std::nothrow) uint8_t[static_cast<size_t>(pixels.width) * 3]);
  if (!reducer.ok() || !row) return 0;
  const unsigned under[3] = {BlueOf(request.background), GreenOf(request.background), RedOf(request.background)};
  for (int32_t y = 0; y < pixels.height; ++y) {
    const uint8_t* p = pixels.rgba.get() + static_cast<size_t>(y) * static_cast<size_t>(pixels.width) * 4;
    uint8_t* out = row.get();
    for (int32_t x = 0; x < pixels.width; ++x, p += 4, out += 3) {
      const unsigned a = pixels.hasAlpha ? p[3] : 255;
      for (int k = 0; k < 3; ++k) out[k] = static_cast<uint8_t>((p[2 - k] * a + under[k] * (255 - a) + 127) / 255);
    }
    reducer.AddRow(row.get());
  }
  return reducer.Finish();
}

ImportedPicture ImportCameraFormat(const uint8_t* data, size_t size, const ImportRequest& request) {
  DecodedPixels pixels = DecodeCameraFormat(data, size, kMaxDecodedPixels);
  return ImportDecodedPixels(pixels, request);
}

}  // namespace

ImportedPicture ImportDecodedPixels(DecodedPixels& pixels, const ImportRequest& request) {
  ImportedPicture result;
  if (pixels.error != ImportError::kNone || !pixels.rgba) {
    result.error = pixels.error == ImportError::kNone ? ImportError::kDamaged : pixels.error;
    result.filePixels = pixels.filePixels;
    result.maxPixels = kMaxDecodedPixels;
    return result;
  }
  const bool swap = OrientationSwapsSides(pixels.orientation);
  result.fileWidth = swap ? pixels.height : pixels.width;
  result.fileHeight = swap ? pixels.width : pixels.height;
  result.fileBitCount = 24;
  result.dib = DibOriented(FromDecodedPixels(pixels, request), pixels.orientation);
  if (!result.dib) result.error = ImportError::kOutOfMemory;
  return result;
}

namespace {

ImportedPicture ImportFormat(int index, const uint8_t* data, size_t size, const ImportRequest& request) {
  ImportedPicture result;
  ImageHeader header;
  MemorySource source(data, size);
  if (!ReadFormatHeader(index, source, &header)) {
    result.error = header.tooLarge ? ImportError::kTooLarge : ImportError::kDamaged;
    if (header.tooLarge) {
      result.filePixels = static_cast<uint64_t>(header.width) * static_cast<uint64_t>(header.height);
      result.maxPixels = MaxPixelsOf(index, header.bitCount);
    }
    return result;
  }
  PictureDecode decode;
  decode.background = request.background;
  decode.longestSide = request.longestSide;
  BlockHandle dib = ReadFormatPicture(index, data, size, &decode);
  if (!dib) {
    result.error = decode.error == ImportError::kNone ? ImportError::kDamaged : decode.error;
    result.filePixels = decode.filePixels;
    result.maxPixels = decode.maxPixels;
    return result;
  }
  result.paletteWarning = WantsPaletteWarning(ClassifyPicture(dib));
  // Readers that cannot decode smaller give the whole picture.
  dib = ReducedToFit(dib, request.longestSide, true);
  const bool swap = OrientationSwapsSides(decode.orientation);
  result.fileWidth = swap ? header.height : header.width;
  result.fileHeight = swap ? header.width : header.height;
  result.fileBitCount = header.bitCount;
  result.dib = dib ? DibOriented(dib, decode.orientation) : 0;
  if (!result.dib) result.error = ImportError::kOutOfMemory;
  return result;
}

}  // namespace

ImportedPicture ImportPictureFile(const char* path, const ImportRequest& request) {
  ImportedPicture result;
  int index = FindImageFormat(path);
  if (request.formats == ImportFormats::kSixRows && index < 0) {
    result.error = ImportError::kNotAPicture;
    return result;
  }
  FileBytes file = ReadWholeFile(path, kMaxPictureBytes);
  if (!file.data) {
    result.error = ImportError::kUnreadableFile;
    return result;
  }
  if (request.formats == ImportFormats::kByContent) index = FormatOfContent(file.data.get(), file.size, path);
  if (index == kCameraFormat) return ImportCameraFormat(file.data.get(), file.size, request);
  if (index < 0) {
    result.error = ImportError::kNotAPicture;
    return result;
  }
  return ImportFormat(index, file.data.get(), file.size, request);
}

// A clipboard bitmap too large to be reduced is kept whole rather than lost.
BlockHandle ImportPictureDib(BlockHandle dib, const ImportRequest& request) {
  return ReducedToFit(dib, request.longestSide, false);
}

bool HasPictureExtension(const char* path) {
  if (FindImageFormat(path) >= 0) return true;
  const char* dot = path ? std::strrchr(FileNamePart(path), '.') : nullptr;
  if (!dot) return false;
  for (const char* extension : kOtherExtensions)
    if (CompareNoCase(dot + 1, extension, std::strlen(extension) + 1) == 0) return true;
  return false;
}

std::string PictureExtensionList() {
  std::string list;
  char extension[8];
  for (int i = 0; ImageFormatExtension(i, extension, sizeof extension) > 0; ++i) list += (i ? ", " : "") + std::string(extension);
  for (const char* other : kOtherExtensions) list += ", " + std::string(other);
  return list;
}

std::string PictureFormatList() {
  std::string list;
  for (int i = 0; ImageFormatName(i); ++i) list += (i ? ", " : "") + std::string(ImageFormatName(i));
  for (const char* other : kOtherFormats) list += ", " + std::string(other);
  return list;
}

std::string ImportErrorText(const ImportedPicture& picture) {
  switch (picture.error) {
    case ImportError::kNone: return "";
    case ImportError::kUnreadableFile: return "cannot be read";
    case ImportError::kNotAPicture: return "not a picture";
    case ImportError::kUnsupported: return "unsupported format";
    case ImportError::kDamaged: return "damaged";
    case ImportError::kOutOfMemory: return "not enough memory";
    case ImportError::kTooLarge: {
      char text[80];
      std::snprintf(text, sizeof text, "too large: %llu megapixels, at most %llu",
                    static_cast<unsigned long long>((picture.filePixels + 999999) / 1000000),
                    static_cast<unsigned long long>(picture.maxPixels / 1000000));
      return text;
    }
  }
  return "damaged";
}
