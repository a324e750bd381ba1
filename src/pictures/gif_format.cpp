// GIF: the first image of the file, on the logical screen, whose uncovered
// part is the background index. The image's colour table (its own or the
// global one) becomes the Dib's: 2 entries give 1 bit, up to 16 give 4, more
// give 8. stb_image decodes the LZW data.
#include <cstring>

#include "pictures/format_readers.h"

namespace {

// Skips data sub-blocks; true when their terminator was there.
bool SkipSubBlocks(FieldReader& r) {
  for (;;) {
    uint8_t length = r.U8();
    if (!r.ok()) return false;
    if (length == 0) return true;
    r.Skip(length);
  }
}

void ReadColourTable(FieldReader& r, int entries, RgbQuad* table) {
  for (int i = 0; i < entries; ++i) {
    uint8_t rgb[3];
    r.Bytes(rgb, 3);
    table[i] = RgbQuad{rgb[2], rgb[1], rgb[0], 0};
  }
}

// Reads up to the first image's LZW data, leaving `r` there.
bool ReadLayout(FieldReader& r, ImageHeader* header) {
  char signature[6];
  r.Bytes(signature, 6);
  if (std::memcmp(signature, "GIF87a", 6) != 0 && std::memcmp(signature, "GIF89a", 6) != 0) return false;
  header->width = r.U16le();
  header->height = r.U16le();
  uint8_t flags = r.U8();
  uint8_t background = r.U8();
  r.Skip(1);  // aspect ratio
  RgbQuad global[256] = {};
  int globalEntries = flags & 0x80 ? 2 << (flags & 7) : 0;
  ReadColourTable(r, globalEntries, global);

  // Extensions up to the first image; the last graphic control extension
  // before it says which index is transparent.
  int transparent = -1;
  for (;;) {
    uint8_t tag = r.U8();
    if (!r.ok()) return false;
    if (tag == 0x2C) break;
    if (tag != 0x21) return false;  // the trailer, or junk, before any image
    if (r.U8() == 0xF9) {
      uint8_t length = r.U8();
      if (length >= 4) {
        uint8_t controlFlags = r.U8();
        r.Skip(2);  // delay
        uint8_t index = r.U8();
        transparent = controlFlags & 1 ? index : -1;
        length = static_cast<uint8_t>(length - 4);
      }
      r.Skip(length);
    }
    if (!SkipSubBlocks(r)) return false;
  }

  header->imageLeft = r.U16le();
  header->imageTop = r.U16le();
  header->imageWidth = r.U16le();
  header->imageHeight = r.U16le();
  uint8_t imageFlags = r.U8();
  if (header->imageLeft + header->imageWidth > header->width || header->imageTop + header->imageHeight > header->height)
    return false;
  int entries = globalEntries;
  if (imageFlags & 0x80) {
    entries = 2 << (imageFlags & 7);
    ReadColourTable(r, entries, header->colours);
  } else {
    std::memcpy(header->colours, global, sizeof global);
  }
  if (!r.ok() || entries == 0) return false;
  header->bitCount = entries == 2 ? 1 : entries <= 16 ? 4 : 8;
  header->alpha = AlphaUse::kGifScreen;
  header->transparentIndex = transparent < entries ? transparent : -1;
  header->backgroundIndex = background < entries ? background : 0;
  return ImageHeaderIsReadable(*header);
}

}  // namespace

bool ReadGifHeader(ByteSource& file, ImageHeader* header) {
  FieldReader r(file);
  return ReadLayout(r, header);
}

BlockHandle ReadGifPicture(const uint8_t* data, size_t size, PictureDecode* decode) {
  MemorySource source(data, size);
  FieldReader r(source);
  ImageHeader header;
  if (!ReadLayout(r, &header)) return 0;
  // The decoder takes a stream that stops early as a finished picture; a
  // file cut inside the first image's data is damaged, not small.
  r.Skip(1);  // LZW code size
  if (!SkipSubBlocks(r)) return 0;
  return DecodeWithStb(data, size, header, *decode);
}
