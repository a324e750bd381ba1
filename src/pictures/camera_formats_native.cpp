// TIFF, WebP and the HEIF family read with libtiff, libwebp and libheif.
// Every file is hostile until proven otherwise: the picture's size is
// checked before any pixel is decoded, each library's errors become an
// ImportError, and the pixels land in memory we allocate without throwing.
#include <libheif/heif.h>
#include <tiffio.h>
#include <webp/decode.h>
#include <webp/demux.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>

#include "pictures/camera_formats.h"
#include "pictures/exif_orientation.h"

namespace {

DecodedPixels Failure(ImportError error, uint64_t filePixels = 0) {
  DecodedPixels pixels;
  pixels.error = error;
  pixels.filePixels = filePixels;
  return pixels;
}

// Sizes a decoder may not be asked for: nothing at all, more than
// `maxPixels`, or sides our 32-bit fields cannot hold. Fills `pixels` with
// the error and returns false.
bool SizeIsReadable(uint64_t width, uint64_t height, uint64_t maxPixels, DecodedPixels* pixels) {
  const uint64_t count = width * height;  // each side is below 2^32
  if (width == 0 || height == 0) {
    *pixels = Failure(ImportError::kDamaged);
    return false;
  }
  if (count > maxPixels || width > INT32_MAX || height > INT32_MAX) {
    *pixels = Failure(ImportError::kTooLarge, count);
    return false;
  }
  if (count > SIZE_MAX / 4) {
    *pixels = Failure(ImportError::kOutOfMemory);
    return false;
  }
  return true;
}

// The RGBA buffer of a `width` x `height` picture, or kOutOfMemory.
bool Allocate(uint32_t width, uint32_t height, DecodedPixels* pixels) {
  pixels->rgba.reset(new (std::nothrow) uint8_t[size_t{width} * height * 4]);
  if (!pixels->rgba) {
    *pixels = Failure(ImportError::kOutOfMemory);
    return false;
  }
  pixels->width = static_cast<int32_t>(width);
  pixels->height = static_cast<int32_t>(height);
  return true;
}

// hasAlpha promises that every alpha byte is 255 when false, so a file that
// has an alpha channel but uses none of it counts as opaque.
void SetHasAlpha(DecodedPixels* pixels) {
  const size_t bytes = size_t(pixels->width) * size_t(pixels->height) * 4;
  pixels->hasAlpha = false;
  for (size_t i = 3; i < bytes; i += 4)
    if (pixels->rgba[i] != 255) {
      pixels->hasAlpha = true;
      return;
    }
}

// Premultiplied colours back to straight ones.
void Unpremultiply(DecodedPixels* pixels) {
  const size_t bytes = size_t(pixels->width) * size_t(pixels->height) * 4;
  uint8_t* p = pixels->rgba.get();
  for (size_t i = 0; i < bytes; i += 4) {
    const unsigned a = p[i + 3];
    if (a == 255 || a == 0) continue;
    for (int c = 0; c < 3; ++c) {
      const unsigned v = (p[i + c] * 255u + a / 2) / a;
      p[i + c] = static_cast<uint8_t>(v > 255 ? 255 : v);
    }
  }
}

// ---- TIFF -------------------------------------------------------------------

struct TiffMemory {
  const uint8_t* data;
  uint64_t size;
  uint64_t position;
};

tmsize_t TiffRead(thandle_t handle, void* buffer, tmsize_t count) {
  auto* file = static_cast<TiffMemory*>(handle);
  if (count <= 0 || file->position >= file->size) return 0;
  const uint64_t left = file->size - file->position;
  const uint64_t n = uint64_t(count) < left ? uint64_t(count) : left;
  std::memcpy(buffer, file->data + file->position, static_cast<size_t>(n));
  file->position += n;
  return static_cast<tmsize_t>(n);
}

tmsize_t TiffWrite(thandle_t, void*, tmsize_t) { return -1; }

toff_t TiffSeek(thandle_t handle, toff_t offset, int whence) {
  auto* file = static_cast<TiffMemory*>(handle);
  uint64_t base = 0;
  if (whence == SEEK_CUR) base = file->position;
  else if (whence == SEEK_END) base = file->size;
  else if (whence != SEEK_SET) return static_cast<toff_t>(-1);
  // Offsets are unsigned; a step back from SEEK_CUR or SEEK_END arrives
  // wrapped round, and the sum wraps back to the place meant.
  file->position = base + offset;
  return file->position;
}

int TiffClose(thandle_t) { return 0; }
toff_t TiffSize(thandle_t handle) { return static_cast<TiffMemory*>(handle)->size; }
int TiffMap(thandle_t, void**, toff_t*) { return 0; }
void TiffUnmap(thandle_t, void*, toff_t) {}

void TiffQuiet(const char*, const char*, va_list) {}

struct TiffCloser {
  void operator()(TIFF* tif) const { TIFFClose(tif); }
};

// The first picture of the file, as stored: its rows top first whatever
// its Orientation tag says, which is reported for the import to apply.
DecodedPixels DecodeTiff(const uint8_t* data, size_t size, uint64_t maxPixels) {
  static std::once_flag quiet;
  std::call_once(quiet, [] {
    TIFFSetErrorHandler(TiffQuiet);
    TIFFSetWarningHandler(TiffQuiet);
  });
  TiffMemory memory{data, size, 0};
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  if (!options) return Failure(ImportError::kOutOfMemory);
  // No single allocation of libtiff's needs more than a strip of the
  // largest picture allowed: up to 5 samples of 16 bits a pixel.
  const uint64_t most = maxPixels > (UINT64_MAX - (1u << 20)) / 10 ? UINT64_MAX : maxPixels * 10 + (1u << 20);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, most > uint64_t(PTRDIFF_MAX) ? PTRDIFF_MAX : tmsize_t(most));
  // "m": no memory mapping; every read goes through TiffRead.
  std::unique_ptr<TIFF, TiffCloser> tif(TIFFClientOpenExt("picture", "rm", &memory, TiffRead, TiffWrite, TiffSeek,
                                                          TiffClose, TiffSize, TiffMap, TiffUnmap, options));
  TIFFOpenOptionsFree(options);
  if (!tif) return Failure(ImportError::kDamaged);

  char message[1024] = "";
  if (!TIFFRGBAImageOK(tif.get(), message)) return Failure(ImportError::kUnsupported);
  uint32_t width = 0, height = 0;
  if (!TIFFGetField(tif.get(), TIFFTAG_IMAGEWIDTH, &width) || !TIFFGetField(tif.get(), TIFFTAG_IMAGELENGTH, &height))
    return Failure(ImportError::kDamaged);
  DecodedPixels pixels;
  if (!SizeIsReadable(width, height, maxPixels, &pixels)) return pixels;

  // libtiff's RGBA reader premultiplies straight alpha. Told the alpha is
  // premultiplied already, it hands the stored values over unchanged.
  uint16_t extraCount = 0;
  uint16_t* extraTypes = nullptr;
  bool straightAlpha = false;
  if (TIFFGetField(tif.get(), TIFFTAG_EXTRASAMPLES, &extraCount, &extraTypes) && extraCount >= 1 &&
      extraCount <= 16 && extraTypes[0] == EXTRASAMPLE_UNASSALPHA) {
    uint16_t types[16];
    std::memcpy(types, extraTypes, extraCount * sizeof types[0]);
    types[0] = EXTRASAMPLE_ASSOCALPHA;
    straightAlpha = TIFFSetField(tif.get(), TIFFTAG_EXTRASAMPLES, extraCount, types) == 1;
  }

  TIFFRGBAImage image;
  if (!TIFFRGBAImageBegin(&image, tif.get(), /*stoponerr=*/1, message)) return Failure(ImportError::kDamaged);
  // Asking for the file's own orientation means no flipping at all.
  image.req_orientation = image.orientation;
  const bool premultiplied = image.alpha != 0 && !straightAlpha;
  const bool alpha = image.alpha != 0;
  if (!Allocate(width, height, &pixels)) {
    TIFFRGBAImageEnd(&image);
    return pixels;
  }
  // The buffer comes from new[], aligned for any scalar type.
  auto* raster = reinterpret_cast<uint32_t*>(pixels.rgba.get());
  const int ok = TIFFRGBAImageGet(&image, raster, width, height);
  const uint16_t orientation = image.orientation;
  TIFFRGBAImageEnd(&image);
  if (!ok) return Failure(ImportError::kDamaged);

  // The raster holds one 32-bit word a pixel (R in its low byte); the
  // bytes in memory follow the host's order.
  uint8_t* p = pixels.rgba.get();
  for (size_t i = 0, n = size_t{width} * height; i < n; ++i, p += 4) {
    const uint32_t abgr = raster[i];
    p[0] = static_cast<uint8_t>(TIFFGetR(abgr));
    p[1] = static_cast<uint8_t>(TIFFGetG(abgr));
    p[2] = static_cast<uint8_t>(TIFFGetB(abgr));
    p[3] = static_cast<uint8_t>(alpha ? TIFFGetA(abgr) : 255);
  }
  if (premultiplied) Unpremultiply(&pixels);
  if (alpha) SetHasAlpha(&pixels);
  pixels.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
  uint32_t iccSize = 0;
  const uint8_t* icc = nullptr;
  if (TIFFGetField(tif.get(), TIFFTAG_ICCPROFILE, &iccSize, &icc) && icc && iccSize > 0)
    pixels.icc.assign(icc, icc + iccSize);
  return pixels;
}

// ---- WebP -------------------------------------------------------------------

struct DemuxDeleter {
  void operator()(WebPDemuxer* demux) const { WebPDemuxDelete(demux); }
};
struct AnimDecoderDeleter {
  void operator()(WebPAnimDecoder* decoder) const { WebPAnimDecoderDelete(decoder); }
};

// A still picture or the first frame of an animation, with its colour
// profile and the orientation of its EXIF chunk.
DecodedPixels DecodeWebp(const uint8_t* data, size_t size, uint64_t maxPixels) {
  WebPBitstreamFeatures features;
  switch (WebPGetFeatures(data, size, &features)) {
    case VP8_STATUS_OK: break;
    case VP8_STATUS_UNSUPPORTED_FEATURE: return Failure(ImportError::kUnsupported);
    case VP8_STATUS_OUT_OF_MEMORY: return Failure(ImportError::kOutOfMemory);
    default: return Failure(ImportError::kDamaged);
  }
  DecodedPixels pixels;
  if (!SizeIsReadable(uint32_t(features.width), uint32_t(features.height), maxPixels, &pixels)) return pixels;

  const WebPData whole{data, size};
  std::unique_ptr<WebPDemuxer, DemuxDeleter> demux(WebPDemux(&whole));
  if (!demux) return Failure(ImportError::kDamaged);
  const uint32_t width = WebPDemuxGetI(demux.get(), WEBP_FF_CANVAS_WIDTH);
  const uint32_t height = WebPDemuxGetI(demux.get(), WEBP_FF_CANVAS_HEIGHT);
  if (width != uint32_t(features.width) || height != uint32_t(features.height)) return Failure(ImportError::kDamaged);

  if (!features.has_animation) {
    if (!Allocate(width, height, &pixels)) return pixels;
    const size_t stride = size_t{width} * 4;
    if (!WebPDecodeRGBAInto(data, size, pixels.rgba.get(), stride * height, static_cast<int>(stride)))
      return Failure(ImportError::kDamaged);
  } else {
    WebPAnimDecoderOptions options;
    if (!WebPAnimDecoderOptionsInit(&options)) return Failure(ImportError::kUnsupported);
    options.color_mode = MODE_RGBA;  // straight alpha
    options.use_threads = 0;
    std::unique_ptr<WebPAnimDecoder, AnimDecoderDeleter> decoder(WebPAnimDecoderNew(&whole, &options));
    if (!decoder) return Failure(ImportError::kDamaged);
    uint8_t* frame = nullptr;
    int timestamp = 0;
    if (!WebPAnimDecoderGetNext(decoder.get(), &frame, &timestamp) || !frame) return Failure(ImportError::kDamaged);
    if (!Allocate(width, height, &pixels)) return pixels;
    std::memcpy(pixels.rgba.get(), frame, size_t{width} * height * 4);
  }
  // Not from the features: a lossless picture's alpha flag is only a hint.
  SetHasAlpha(&pixels);

  WebPChunkIterator chunk;
  if (WebPDemuxGetChunk(demux.get(), "ICCP", 1, &chunk)) {
    pixels.icc.assign(chunk.chunk.bytes, chunk.chunk.bytes + chunk.chunk.size);
    WebPDemuxReleaseChunkIterator(&chunk);
  }
  if (WebPDemuxGetChunk(demux.get(), "EXIF", 1, &chunk)) {
    pixels.orientation = ExifOrientation(chunk.chunk.bytes, chunk.chunk.size);
    WebPDemuxReleaseChunkIterator(&chunk);
  }
  return pixels;
}

// ---- HEIF, HEIC, AVIF -------------------------------------------------------

struct HeifContextDeleter {
  void operator()(heif_context* context) const { heif_context_free(context); }
};
struct HeifHandleDeleter {
  void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
struct HeifImageDeleter {
  void operator()(heif_image* image) const { heif_image_release(image); }
};
struct HeifOptionsDeleter {
  void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
};

ImportError HeifFailure(const heif_error& error) {
  // libheif's own limits on a picture's sides and on its boxes.
  if (error.subcode == heif_suberror_Security_limit_exceeded) return ImportError::kTooLarge;
  switch (error.code) {
    case heif_error_Unsupported_filetype:
    case heif_error_Unsupported_feature:
    case heif_error_Plugin_loading_error: return ImportError::kUnsupported;  // e.g. no decoder for the codec
    case heif_error_Memory_allocation_error: return ImportError::kOutOfMemory;
    default: return ImportError::kDamaged;
  }
}

// The primary image, turned and mirrored by libheif as the file says.
DecodedPixels DecodeHeif(const uint8_t* data, size_t size, uint64_t maxPixels) {
  // Loads the decoder plug-ins once; they stay for the life of the program.
  static std::once_flag started;
  std::call_once(started, [] { heif_init(nullptr); });
  std::unique_ptr<heif_context, HeifContextDeleter> context(heif_context_alloc());
  if (!context) return Failure(ImportError::kOutOfMemory);
  heif_error error = heif_context_read_from_memory_without_copy(context.get(), data, size, nullptr);
  if (error.code != heif_error_Ok) return Failure(HeifFailure(error));
  heif_image_handle* primary = nullptr;
  error = heif_context_get_primary_image_handle(context.get(), &primary);
  if (error.code != heif_error_Ok || !primary) return Failure(HeifFailure(error));
  std::unique_ptr<heif_image_handle, HeifHandleDeleter> handle(primary);

  // The size as shown, after any quarter turn.
  const int shownWidth = heif_image_handle_get_width(handle.get());
  const int shownHeight = heif_image_handle_get_height(handle.get());
  DecodedPixels pixels;
  if (shownWidth < 0 || shownHeight < 0) return Failure(ImportError::kDamaged);
  if (!SizeIsReadable(uint32_t(shownWidth), uint32_t(shownHeight), maxPixels, &pixels)) return pixels;

  std::unique_ptr<heif_decoding_options, HeifOptionsDeleter> options(heif_decoding_options_alloc());
  if (!options) return Failure(ImportError::kOutOfMemory);
  options->convert_hdr_to_8bit = 1;  // 10- and 12-bit pictures come as 8 bits
  options->strict_decoding = 1;      // missing data is an error, not a grey patch
  heif_image* decoded = nullptr;
  error = heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, options.get());
  if (error.code != heif_error_Ok || !decoded) return Failure(HeifFailure(error));
  std::unique_ptr<heif_image, HeifImageDeleter> image(decoded);

  const int width = heif_image_get_width(image.get(), heif_channel_interleaved);
  const int height = heif_image_get_height(image.get(), heif_channel_interleaved);
  int stride = 0;
  const uint8_t* plane = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
  if (!plane || width <= 0 || height <= 0 || stride < width * 4) return Failure(ImportError::kDamaged);
  if (!SizeIsReadable(uint32_t(width), uint32_t(height), maxPixels, &pixels)) return pixels;
  if (!Allocate(uint32_t(width), uint32_t(height), &pixels)) return pixels;
  const bool alpha = heif_image_handle_has_alpha_channel(handle.get()) != 0;
  for (int y = 0; y < height; ++y) {
    uint8_t* row = pixels.rgba.get() + size_t(y) * size_t(width) * 4;
    std::memcpy(row, plane + size_t(y) * size_t(stride), size_t(width) * 4);
    if (!alpha)
      for (int x = 0; x < width; ++x) row[x * 4 + 3] = 255;
  }
  if (alpha) {
    if (heif_image_is_premultiplied_alpha(image.get())) Unpremultiply(&pixels);
    SetHasAlpha(&pixels);
  }

  const heif_color_profile_type profile = heif_image_handle_get_color_profile_type(handle.get());
  if (profile == heif_color_profile_type_prof || profile == heif_color_profile_type_rICC) {
    const size_t bytes = heif_image_handle_get_raw_color_profile_size(handle.get());
    std::vector<uint8_t> icc;
    if (bytes > 0 && bytes <= size) {
      icc.resize(bytes);
      if (heif_image_handle_get_raw_color_profile(handle.get(), icc.data()).code == heif_error_Ok)
        pixels.icc = std::move(icc);
    }
  }
  return pixels;
}

}  // namespace

DecodedPixels DecodeCameraFormat(const uint8_t* data, size_t size, uint64_t maxPixels) {
  if (!LooksLikeCameraFormat(data, size)) return Failure(ImportError::kNotAPicture);
  // Each library's own out-of-memory may still surface as std::bad_alloc
  // from deep inside it; the program goes on without the picture.
  try {
    if (size >= 12 && std::memcmp(data, "RIFF", 4) == 0) return DecodeWebp(data, size, maxPixels);
    if (size >= 16 && std::memcmp(data + 4, "ftyp", 4) == 0) return DecodeHeif(data, size, maxPixels);
    return DecodeTiff(data, size, maxPixels);
  } catch (const std::bad_alloc&) {
    return Failure(ImportError::kOutOfMemory);
  }
}
