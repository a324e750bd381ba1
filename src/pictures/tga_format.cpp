// TGA: colour-mapped files with 8-bit indexes keep their map as the Dib's
// table; grey files (8 bits, or 16 with alpha) get the grey table; the rest
// become 24-bit. Raw and run-length coded data are both read by stb_image.
// A colour map that does not start at entry 0 is not read.
#include "pictures/format_readers.h"

namespace {

constexpr uint32_t kTgaHeaderSize = 18;

struct TgaLayout {
  uint64_t dataOffset = 0;
  uint32_t bytesPerPixel = 0;
  bool runLength = false;
};

// One colour-map entry as the decoder expands it.
RgbQuad MapEntry(FieldReader& r, uint8_t bits) {
  switch (bits) {
    case 8: {
      uint8_t v = r.U8();
      return RgbQuad{v, v, v, 0};
    }
    case 15:
    case 16: {
      uint16_t v = r.U16le();
      auto five = [](int c) { return static_cast<uint8_t>(c * 255 / 31); };
      return RgbQuad{five(v & 31), five(v >> 5 & 31), five(v >> 10 & 31), 0};
    }
    default: {  // 24 or 32: blue, green, red, then alpha, which is not kept
      uint8_t bgr[3];
      r.Bytes(bgr, 3);
      if (bits == 32) r.U8();
      return RgbQuad{bgr[0], bgr[1], bgr[2], 0};
    }
  }
}

// Channels the decoder gives a file that is not colour-mapped.
int TrueColourChannels(uint8_t depth, bool grey) {
  switch (depth) {
    case 8: return 1;
    case 16: return grey ? 2 : 3;
    case 15: return 3;
    case 24: return 3;
    case 32: return 4;
    default: return 0;
  }
}

bool ReadLayout(ByteSource& file, ImageHeader* header, TgaLayout* layout) {
  FieldReader r(file);
  uint8_t idLength = r.U8();
  uint8_t mapType = r.U8();
  uint8_t imageType = r.U8();
  uint16_t mapFirst = r.U16le();
  uint16_t mapLength = r.U16le();
  uint8_t mapBits = r.U8();
  r.Skip(4);  // origin
  header->width = r.U16le();
  header->height = r.U16le();
  uint8_t depth = r.U8();
  uint8_t descriptor = r.U8();
  if (!r.ok() || mapType > 1) return false;
  layout->runLength = imageType >= 8;
  layout->bytesPerPixel = (depth + 7u) / 8;
  layout->dataOffset = kTgaHeaderSize + idLength;

  if (mapType == 1) {
    bool mapBitsOk = mapBits == 8 || mapBits == 15 || mapBits == 16 || mapBits == 24 || mapBits == 32;
    if ((imageType != 1 && imageType != 9) || !mapBitsOk || (depth != 8 && depth != 16) || mapFirst != 0 ||
        mapLength == 0)
      return false;
    r.Seek(layout->dataOffset);
    for (uint32_t i = 0; i < mapLength; ++i) {
      RgbQuad entry = MapEntry(r, mapBits);
      if (i < 256) header->colours[i] = entry;
    }
    if (!r.ok()) return false;
    layout->dataOffset = r.Offset();
    // 16-bit indexes can name more colours than a Dib table holds.
    header->bitCount = depth == 8 ? 8 : 24;
    header->alpha = AlphaUse::kIgnore;
  } else {
    if (imageType != 2 && imageType != 3 && imageType != 10 && imageType != 11) return false;
    int channels = TrueColourChannels(depth, (imageType & 7) == 3);
    if (channels == 0) return false;
    header->bitCount = channels <= 2 ? 8 : 24;
    if (channels <= 2) SetGreyTable(header, 256);
    // Many writers leave the alpha byte zero and say so with zero attribute bits.
    header->alpha = (descriptor & 0x0F) == 0 ? AlphaUse::kIgnore : AlphaUse::kComposite;
  }
  return ImageHeaderIsReadable(*header);
}

// True when the run-length packets cover every pixel inside the file.
bool RunsCoverPicture(const uint8_t* data, size_t size, const TgaLayout& layout, uint64_t pixels) {
  uint64_t at = layout.dataOffset;
  for (uint64_t done = 0; done < pixels;) {
    if (at >= size) return false;
    uint8_t packet = data[at++];
    uint32_t count = (packet & 0x7Fu) + 1;
    uint64_t bytes = packet & 0x80 ? layout.bytesPerPixel : uint64_t{count} * layout.bytesPerPixel;
    if (bytes > size - at) return false;
    at += bytes;
    done += count;
  }
  return true;
}

}  // namespace

bool ReadTgaHeader(ByteSource& file, ImageHeader* header) {
  TgaLayout layout;
  return ReadLayout(file, header, &layout);
}

BlockHandle ReadTgaPicture(const uint8_t* data, size_t size, PictureDecode* decode) {
  MemorySource source(data, size);
  ImageHeader header;
  TgaLayout layout;
  if (!ReadLayout(source, &header, &layout)) return 0;
  // The decoder fills what is missing with zeros (or leaves it unset), so a
  // file cut short is caught here.
  uint64_t pixels = static_cast<uint64_t>(header.width) * static_cast<uint64_t>(header.height);
  bool complete = layout.runLength
                      ? RunsCoverPicture(data, size, layout, pixels)
                      : layout.dataOffset <= size && pixels * layout.bytesPerPixel <= size - layout.dataOffset;
  if (!complete) return 0;
  return DecodeWithStb(data, size, header, *decode);
}
