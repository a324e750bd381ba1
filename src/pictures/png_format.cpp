// PNG: IHDR gives size, colour type and bit depth; palette files take their
// table from PLTE. stb_image decodes every standard colour type, interlaced
// or not; 16-bit samples come out as 8.
#include <zlib.h>

#include <cstring>
#include <memory>
#include <new>

#include "pictures/exif_orientation.h"
#include "pictures/format_readers.h"

namespace {

constexpr uint32_t ChunkType(const char (&name)[5]) {
  return static_cast<uint32_t>(name[0]) << 24 | static_cast<uint32_t>(name[1]) << 16 |
         static_cast<uint32_t>(name[2]) << 8 | static_cast<uint32_t>(name[3]);
}

enum PngColourType : uint8_t { kGrey = 0, kRgb = 2, kPalette = 3, kGreyAlpha = 4, kRgba = 6 };

// The colour type and depth combinations PNG allows, and the Dib each becomes:
// 2-bit samples go into a 4-bit Dib, 16-bit ones are cut to 8.
struct PngKind {
  uint8_t colourType;
  uint8_t depth;
  uint16_t dibBits;
};
constexpr PngKind kPngKinds[] = {
    {kGrey, 1, 1},    {kGrey, 2, 4},      {kGrey, 4, 4},       {kGrey, 8, 8},    {kGrey, 16, 8},
    {kRgb, 8, 24},    {kRgb, 16, 24},     {kPalette, 1, 1},    {kPalette, 2, 4}, {kPalette, 4, 4},
    {kPalette, 8, 8}, {kGreyAlpha, 8, 8}, {kGreyAlpha, 16, 8}, {kRgba, 8, 24},   {kRgba, 16, 24},
};

uint16_t DibBitsFor(uint8_t colourType, uint8_t depth) {
  for (const PngKind& kind : kPngKinds)
    if (kind.colourType == colourType && kind.depth == depth) return kind.dibBits;
  return 0;
}

constexpr uint32_t kFullPalette = 256 * 3;

struct PngLayout {
  uint64_t paletteOffset = 0;  // of the PLTE chunk's data
  uint32_t paletteLength = 0;  // 0 when the file has none
};

// Walks the chunks after IHDR to PLTE, which must come before the image data.
bool ReadPalette(FieldReader& r, uint8_t depth, ImageHeader* header, PngLayout* layout) {
  for (;;) {
    uint32_t length = r.U32be();
    uint32_t type = r.U32be();
    if (!r.ok() || length > 0x7FFFFFFF) return false;
    if (type == ChunkType("IDAT") || type == ChunkType("IEND")) return false;
    if (type != ChunkType("PLTE")) {
      r.Skip(length + 4ull);  // and the CRC
      continue;
    }
    if (length == 0 || length % 3 != 0 || length > kFullPalette) return false;
    layout->paletteOffset = r.Offset();
    layout->paletteLength = length;
    uint32_t usable = 1u << depth;  // entries a sample can name
    for (uint32_t i = 0; i < length / 3; ++i) {
      uint8_t rgb[3];
      r.Bytes(rgb, 3);
      if (i < usable) header->colours[i] = RgbQuad{rgb[2], rgb[1], rgb[0], 0};
    }
    return r.ok();
  }
}

bool ReadLayout(ByteSource& file, ImageHeader* header, PngLayout* layout) {
  static const uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
  FieldReader r(file);
  uint8_t signature[8];
  r.Bytes(signature, 8);
  if (!r.ok() || std::memcmp(signature, kSignature, 8) != 0) return false;
  uint32_t length = r.U32be();
  uint32_t type = r.U32be();
  if (type == ChunkType("CgBI")) {  // Apple's variant puts a chunk of its own first
    r.Skip(length + 4ull);
    length = r.U32be();
    type = r.U32be();
  }
  if (type != ChunkType("IHDR") || length != 13) return false;
  uint32_t width = r.U32be();
  uint32_t height = r.U32be();
  uint8_t depth = r.U8();
  uint8_t colourType = r.U8();
  uint8_t compression = r.U8();
  uint8_t filter = r.U8();
  uint8_t interlace = r.U8();
  r.Skip(4);
  header->bitCount = DibBitsFor(colourType, depth);
  if (!r.ok() || header->bitCount == 0 || compression != 0 || filter != 0 || interlace > 1 ||
      width > static_cast<uint32_t>(kMaxImageSide) || height > static_cast<uint32_t>(kMaxImageSide))
    return false;
  header->width = static_cast<int32_t>(width);
  header->height = static_cast<int32_t>(height);
  if (colourType == kPalette) {
    // A palette file keeps its indexes; entries' transparency is not kept.
    header->alpha = AlphaUse::kIgnore;
    if (!ReadPalette(r, depth, header, layout)) return false;
  } else if (colourType == kGrey || colourType == kGreyAlpha) {
    SetGreyTable(header, depth < 8 ? 1 << depth : 256);
  }
  return ImageHeaderIsReadable(*header);
}

// stb_image keeps the palette in an array it never clears, so a pixel that
// names an entry PLTE lacks would take leftover bytes for its colour. It gets
// a copy of the file whose PLTE has all 256 entries, the missing ones black
// (it does not check CRCs).
std::unique_ptr<uint8_t[]> WithFullPalette(const uint8_t* data, size_t size, const PngLayout& layout, size_t* grown) {
  size_t start = static_cast<size_t>(layout.paletteOffset), end = start + layout.paletteLength;
  *grown = size + (kFullPalette - layout.paletteLength);
  std::unique_ptr<uint8_t[]> copy(new (std::nothrow) uint8_t[*grown]);
  if (!copy) return copy;
  std::memcpy(copy.get(), data, end);
  std::memset(copy.get() + end, 0, kFullPalette - layout.paletteLength);
  std::memcpy(copy.get() + start + kFullPalette, data + end, size - end);
  for (int i = 0; i < 4; ++i) copy[start - 8 + i] = static_cast<uint8_t>(kFullPalette >> (24 - 8 * i));
  return copy;
}

// Real profiles are a few kilobytes; camera and print profiles with large
// tables stay well under this.
constexpr uLongf kMaxProfileBytes = 16u << 20;

uint32_t U32be(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 | static_cast<uint32_t>(p[2]) << 8 | p[3];
}

// iCCP: a name of 1 to 79 characters, its terminator, the method (0), and
// the profile as one zlib stream. A profile that cannot be had is left out.
std::vector<uint8_t> InflatedProfile(const uint8_t* chunk, uint32_t length) {
  std::vector<uint8_t> icc;
  const void* end = std::memchr(chunk, 0, length < 80 ? length : 80);
  if (!end) return icc;
  const size_t at = static_cast<size_t>(static_cast<const uint8_t*>(end) - chunk) + 2;
  if (at >= length || chunk[at - 1] != 0) return icc;
  // The profile's own header says how long it is; the stream must give exactly that.
  uint8_t head[4];
  uLongf got = sizeof head;
  if (uncompress(head, &got, chunk + at, length - at) == Z_DATA_ERROR) return icc;
  if (got < sizeof head) return icc;
  uLongf size = U32be(head);
  if (size < 128 || size > kMaxProfileBytes) return icc;
  try {
    icc.resize(size);
  } catch (const std::bad_alloc&) {
    return icc;
  }
  if (uncompress(icc.data(), &size, chunk + at, length - at) != Z_OK || size != icc.size()) icc.clear();
  return icc;
}

// The chunks before the image data that the decoder does not read: the
// colour profile, the EXIF orientation, and how transparent each palette
// entry is.
void ReadChunksBeforeData(const uint8_t* data, size_t size, ImageHeader* header, PictureDecode* decode) {
  size_t at = 8;
  while (at + 8 <= size) {
    const uint32_t length = U32be(data + at), type = U32be(data + at + 4);
    if (length > size - at - 8 || type == ChunkType("IDAT") || type == ChunkType("IEND")) return;
    const uint8_t* chunk = data + at + 8;
    if (type == ChunkType("iCCP") && decode->icc.empty()) decode->icc = InflatedProfile(chunk, length);
    if (type == ChunkType("eXIf")) decode->orientation = ExifOrientation(chunk, length);
    if (type == ChunkType("tRNS") && header->bitCount <= 8 && header->alpha == AlphaUse::kIgnore)
      for (uint32_t i = 0; i < length && i < 256; ++i) header->entryAlpha[i] = chunk[i];
    at += 12 + static_cast<size_t>(length);
  }
}

}  // namespace

bool ReadPngHeader(ByteSource& file, ImageHeader* header) {
  PngLayout layout;
  return ReadLayout(file, header, &layout);
}

BlockHandle ReadPngPicture(const uint8_t* data, size_t size, PictureDecode* decode) {
  MemorySource source(data, size);
  ImageHeader header;
  PngLayout layout;
  if (!ReadLayout(source, &header, &layout)) return 0;
  ReadChunksBeforeData(data, size, &header, decode);
  // stb_image checks the rest: chunks that run past the end, missing image
  // data, a stream that inflates to too few bytes.
  if (layout.paletteLength == 0 || layout.paletteLength == kFullPalette) return DecodeWithStb(data, size, header, *decode);
  size_t grown = 0;
  std::unique_ptr<uint8_t[]> copy = WithFullPalette(data, size, layout, &grown);
  return copy ? DecodeWithStb(copy.get(), grown, header, *decode) : 0;
}
