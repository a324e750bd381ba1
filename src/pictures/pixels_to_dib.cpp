// Pixels decoded by stb_image become a Dib of the kind the file's header
// promised: palette files get their own table back, with each pixel's colour
// looked up in it (stb_image hands out colours, not indexes).
#include <cstring>
#include <unordered_map>

#include "pictures/colour_profile.h"
#include "pictures/image_files.h"
#include "pictures/format_readers.h"
#include "pictures/stb_decode.h"

bool ImageHeaderIsReadable(ImageHeader& header) {
  if (header.width < 1 || header.width > kMaxImageSide || header.height < 1 || header.height > kMaxImageSide)
    return false;
  switch (header.bitCount) {
    case 1: case 4: case 8: case 24: break;
    default: return false;
  }
  BitmapInfoHeader h{};
  h.biSize = sizeof h;
  h.biWidth = header.width;
  h.biHeight = header.height;
  h.biPlanes = 1;
  h.biBitCount = header.bitCount;
  uint64_t total = DibTotalSize(h);
  header.tooLarge = total > kMaxPictureBytes;
  return total != 0 && total <= kMaxPictureBytes;
}

void SetGreyTable(ImageHeader* header, int levels) {
  int step = 255 / (levels - 1);
  for (int i = 0; i < levels; ++i) {
    uint8_t v = static_cast<uint8_t>(i * step);
    header->colours[i] = RgbQuad{v, v, v, 0};
  }
}

namespace {

struct Rgb {
  uint8_t r, g, b;
};

uint8_t Over(uint8_t c, uint8_t alpha, uint8_t under) {
  return static_cast<uint8_t>((c * alpha + under * (255 - alpha) + 127) / 255);
}

Rgb Over(Rgb c, uint8_t alpha, Colour background) {
  return Rgb{Over(c.r, alpha, static_cast<uint8_t>(RedOf(background))), Over(c.g, alpha, static_cast<uint8_t>(GreenOf(background))),
             Over(c.b, alpha, static_cast<uint8_t>(BlueOf(background)))};
}

// One decoded pixel as the Dib shows it.
Rgb PixelColour(const uint8_t* p, int channels, AlphaUse use, Colour background) {
  Rgb c = channels >= 3 ? Rgb{p[0], p[1], p[2]} : Rgb{p[0], p[0], p[0]};
  bool hasAlpha = channels == 2 || channels == 4;
  if (hasAlpha && use == AlphaUse::kComposite) c = Over(c, p[channels - 1], background);
  return c;
}

uint32_t Key(Rgb c) { return static_cast<uint32_t>(c.r) << 16 | c.g << 8 | c.b; }

// Colour -> index in the header's table; the first of equal entries wins.
// A GIF's transparent entry comes last, so an opaque pixel that happens to
// share its colour keeps its own index.
class ColourIndex {
 public:
  explicit ColourIndex(const ImageHeader& header) {
    uint32_t entries = DibColourTableEntries(header.bitCount);
    for (uint32_t i = 0; i < entries; ++i)
      if (static_cast<int>(i) != header.transparentIndex) Add(header.colours[i], i);
    if (header.transparentIndex >= 0) Add(header.colours[header.transparentIndex], header.transparentIndex);
  }
  // -1 when the table lacks the colour.
  int Find(Rgb c) {
    uint32_t key = Key(c);
    if (key == lastKey_) return lastIndex_;
    auto it = map_.find(key);
    lastKey_ = key;
    lastIndex_ = it == map_.end() ? -1 : it->second;
    return lastIndex_;
  }

 private:
  void Add(const RgbQuad& q, uint32_t index) {
    map_.emplace(Key(Rgb{q.rgbRed, q.rgbGreen, q.rgbBlue}), static_cast<int>(index));
  }
  std::unordered_map<uint32_t, int> map_;
  uint32_t lastKey_ = UINT32_MAX;  // no 24-bit key
  int lastIndex_ = -1;
};

void PutIndex(uint8_t* row, int x, int bits, int index) {
  switch (bits) {
    case 8: row[x] = static_cast<uint8_t>(index); break;
    case 4: row[x / 2] |= static_cast<uint8_t>(x % 2 ? index : index << 4); break;
    case 1: row[x / 8] |= static_cast<uint8_t>(index << (7 - x % 8)); break;
  }
}

// The index of a GIF pixel that is background or transparent, -1 for one
// whose colour tells.
int GifIndex(const ImageHeader& header, int x, int y, uint8_t alpha) {
  bool inImage = x >= header.imageLeft && x - header.imageLeft < header.imageWidth && y >= header.imageTop &&
                 y - header.imageTop < header.imageHeight;
  if (!inImage) return header.backgroundIndex;
  if (alpha == 0) return header.transparentIndex >= 0 ? header.transparentIndex : header.backgroundIndex;
  return -1;
}

// Fills a palette Dib's table and rows; false when a pixel's colour is not
// in the table.
bool FillPaletteDib(BlockHandle dib, const StbPixels& pixels, const ImageHeader& header, Colour background) {
  BlockLock lock(dib);
  std::memcpy(DibColourTable(lock.bytes()), header.colours, DibColourTableEntries(header.bitCount) * sizeof(RgbQuad));
  uint8_t* bits = DibBits(lock.bytes());
  uint64_t stride = DibRowStride(pixels.width, header.bitCount);
  bool gif = header.alpha == AlphaUse::kGifScreen && pixels.channels == 4;
  ColourIndex table(header);
  const uint8_t* p = pixels.data;
  for (int y = 0; y < pixels.height; ++y) {
    uint8_t* row = bits + stride * static_cast<uint64_t>(pixels.height - 1 - y);
    for (int x = 0; x < pixels.width; ++x, p += pixels.channels) {
      int index = gif ? GifIndex(header, x, y, p[3]) : -1;
      if (index < 0) index = table.Find(PixelColour(p, pixels.channels, header.alpha, background));
      // The decoder draws a GIF's pixels from the table; any other colour is
      // its own fill of pixels the data never reached: background.
      if (index < 0 && gif) index = header.backgroundIndex;
      if (index < 0) return false;
      PutIndex(row, x, header.bitCount, index);
    }
  }
  return true;
}

BlockHandle TrueColourDib(const StbPixels& pixels, AlphaUse use, Colour background) {
  BlockHandle dib = DibCreate(pixels.width, pixels.height, 24);
  if (!dib) return 0;
  BlockLock lock(dib);
  uint8_t* bits = DibBits(lock.bytes());
  uint64_t stride = DibRowStride(pixels.width, 24);
  const uint8_t* p = pixels.data;
  for (int y = 0; y < pixels.height; ++y) {
    uint8_t* out = bits + stride * static_cast<uint64_t>(pixels.height - 1 - y);
    for (int x = 0; x < pixels.width; ++x, p += pixels.channels, out += 3) {
      Rgb c = PixelColour(p, pixels.channels, use, background);
      out[0] = c.b;
      out[1] = c.g;
      out[2] = c.r;
    }
  }
  return dib;
}

// A colour the table lacks comes from a damaged file whose pixels name
// entries it does not have; the picture is kept in true colour then.
// The table as the page shows it: entries in the file's profile converted
// to sRGB, entries that are partly or wholly transparent laid over the
// background (a GIF's transparent entry is the background).
void ShowTable(BlockHandle dib, const ImageHeader& header, const PictureDecode& decode) {
  BlockLock lock(dib);
  RgbQuad* table = DibColourTable(lock.bytes());
  const uint32_t entries = DibColourTableEntries(header.bitCount);
  const ToSrgb profile(decode.icc, PixelLayout::kBgr);
  for (uint32_t i = 0; i < entries; ++i) {
    RgbQuad& q = table[i];
    if (profile) profile.Convert(&q.rgbBlue, &q.rgbBlue, 1);
    const uint8_t alpha = static_cast<int>(i) == header.transparentIndex ? 0 : header.entryAlpha[i];
    const Rgb c = Over(Rgb{q.rgbRed, q.rgbGreen, q.rgbBlue}, alpha, decode.background);
    q = RgbQuad{c.b, c.g, c.r, 0};
  }
}

BlockHandle PaletteDib(const StbPixels& pixels, const ImageHeader& header, const PictureDecode& decode) {
  BlockHandle dib = DibCreate(pixels.width, pixels.height, header.bitCount);
  if (dib && FillPaletteDib(dib, pixels, header, decode.background)) {
    ShowTable(dib, header, decode);
    return dib;
  }
  if (dib) GlobalBlockFree(dib);
  return TrueColourDib(pixels, header.alpha, decode.background);
}

// True-colour and grey pixels converted from the file's profile to sRGB,
// in place, before any alpha is laid over the background.
void ConvertToSrgb(const StbPixels& pixels, const std::vector<uint8_t>& icc) {
  if (icc.empty()) return;
  const int ch = pixels.channels;
  const ToSrgb profile(icc, ch == 3 ? PixelLayout::kRgb : ch == 4 ? PixelLayout::kRgba : PixelLayout::kGrey);
  if (!profile) return;
  const size_t count = static_cast<size_t>(pixels.width) * static_cast<size_t>(pixels.height);
  if (ch != 2) return profile.Convert(pixels.data, pixels.data, count);
  for (size_t i = 0; i < count; ++i) profile.Convert(pixels.data + 2 * i, pixels.data + 2 * i, 1);
}

}  // namespace

BlockHandle DecodeWithStb(const uint8_t* data, size_t size, const ImageHeader& header, const PictureDecode& decode) {
  StbPixels pixels;
  if (!StbDecode(data, size, &pixels)) return 0;
  BlockHandle dib = 0;
  if (pixels.width == header.width && pixels.height == header.height) {
    if (header.bitCount <= 8 && (header.alpha == AlphaUse::kIgnore || header.alpha == AlphaUse::kGifScreen)) {
      dib = PaletteDib(pixels, header, decode);
    } else {
      ConvertToSrgb(pixels, decode.icc);
      dib = header.bitCount <= 8 ? PaletteDib(pixels, header, decode)
                                 : TrueColourDib(pixels, header.alpha, decode.background);
    }
  }
  StbRelease(&pixels);
  return dib;
}
