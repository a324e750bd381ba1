// What the six format readers share. Each format has a header reader, used
// alone by the information call, and a picture reader that gets the whole
// file in memory and reads the same header from it first.
#pragma once
#include <cstddef>
#include <cstdint>

#include <vector>

#include "base/dib.h"
#include "base/geometry.h"
#include "base/global_block.h"
#include "pictures/byte_source.h"
#include "pictures/decoded_pixels.h"

// No picture side is longer than this; stb_image is held to it as well.
constexpr int32_t kMaxImageSide = 65536;

// What the decoded pixels' alpha means for the Dib.
enum class AlphaUse {
  kComposite,  // laid over the background (true colour and grey files)
  kIgnore,     // palette entries' alpha, or an alpha byte the file says is unused
  kGifScreen,  // GIF: see the screen fields of ImageHeader
};

// The Dib a file will become, as far as its header tells.
struct ImageHeader {
  int32_t width = 0;
  int32_t height = 0;
  uint16_t bitCount = 0;      // of the Dib: 1, 4, 8 or 24
  RgbQuad colours[256] = {};  // the Dib's colour table for 8 bits or fewer
  AlphaUse alpha = AlphaUse::kComposite;
  // GIF: outside the first image the screen shows its background index (the
  // decoder's own background colour cannot be trusted: it swaps red and
  // blue); inside, a fully transparent pixel is the transparent index, or the
  // background when the file has none.
  int transparentIndex = -1;
  int backgroundIndex = 0;
  // How opaque each colour-table entry is (PNG's tRNS); entries shown
  // through are laid over the background in the Dib's table.
  uint8_t entryAlpha[256];
  ImageHeader() {
    for (uint8_t& a : entryAlpha) a = 255;
  }
  int32_t imageLeft = 0, imageTop = 0, imageWidth = 0, imageHeight = 0;
  bool tooLarge = false;
};

// True when the header describes a Dib this program reads: sides 1 to
// kMaxImageSide, 1/4/8/24 bits, and at most kMaxPictureBytes in all. A picture
// that fails only by its size is marked tooLarge.
bool ImageHeaderIsReadable(ImageHeader& header);
// The (i, i, i) table of a grey-scale file with `levels` evenly spaced
// greys from black to white (2, 4, 16 or 256).
void SetGreyTable(ImageHeader* header, int levels);

// What the import asks of a format's picture reader, and what the reader
// learns on the way.
struct PictureDecode {
  Colour background = 0xFFFFFF;  // where transparent pixels show
  int32_t longestSide = 0;       // a reader that can may decode smaller, down to this; 0: full size
  std::vector<uint8_t> icc;      // a profile the reader found outside its decoder's reach
  // Learned:
  int orientation = 1;           // EXIF orientation still to apply
  ImportError error = ImportError::kNone;  // why it failed, when the reader knows better than "damaged"
  uint64_t filePixels = 0;
  uint64_t maxPixels = 0;
};

// Decodes a whole PNG, BMP, GIF or TGA file with stb_image and turns the
// pixels into a Dib as the header describes, converting them from
// `decode.icc` to sRGB first and laying transparent pixels over the
// background; 0 when stb_image fails or finds a different size than the header.
BlockHandle DecodeWithStb(const uint8_t* data, size_t size, const ImageHeader& header, const PictureDecode& decode);

// The header and picture readers of format `index` (0..5); false or 0 for
// another index.
bool ReadFormatHeader(int index, ByteSource& file, ImageHeader* header);
BlockHandle ReadFormatPicture(int index, const uint8_t* data, size_t size, PictureDecode* decode);

// One pair per format. The header readers read only what they need, check it
// (ImageHeaderIsReadable included) and fill `header`; true on success. The
// picture readers also check that the file holds all the data its header
// promises before decoding anything.
bool ReadJpegHeader(ByteSource& file, ImageHeader* header);
BlockHandle ReadJpegPicture(const uint8_t* data, size_t size, PictureDecode* decode);
bool ReadBmpHeader(ByteSource& file, ImageHeader* header);
BlockHandle ReadBmpPicture(const uint8_t* data, size_t size, PictureDecode* decode);
bool ReadGifHeader(ByteSource& file, ImageHeader* header);
BlockHandle ReadGifPicture(const uint8_t* data, size_t size, PictureDecode* decode);
bool ReadPcxHeader(ByteSource& file, ImageHeader* header);
BlockHandle ReadPcxPicture(const uint8_t* data, size_t size, PictureDecode* decode);
bool ReadTgaHeader(ByteSource& file, ImageHeader* header);
BlockHandle ReadTgaPicture(const uint8_t* data, size_t size, PictureDecode* decode);
bool ReadPngHeader(ByteSource& file, ImageHeader* header);
BlockHandle ReadPngPicture(const uint8_t* data, size_t size, PictureDecode* decode);
