// JPEG: the frame header gives the size and the number of components (one
// is grey); stb_image decodes baseline and progressive 8-bit files.
#include "pictures/image_format.h"

namespace {

// Real progressive files have about ten scans. Every scan walks every block
// of the picture however little data it carries, so thousands of empty scans
// would keep the decoder busy for minutes.
constexpr int kMaxJpegScans = 100;

bool IsFrameMarker(uint8_t m) { return m == 0xC0 || m == 0xC1 || m == 0xC2; }
// Tables, restart interval, application data and comments: what may come
// before the frame. Any other marker there (another kind of frame, say) is a
// file the decoder does not read.
bool IsSegmentBeforeFrame(uint8_t m) {
  return m == 0xDB || m == 0xC4 || m == 0xDD || (m >= 0xE0 && m <= 0xEF) || m == 0xFE;
}

// The next marker's code, passing over stray bytes and 0xFF fill; 0 at the end.
uint8_t NextMarker(FieldReader& r) {
  uint8_t b;
  do b = r.U8();
  while (r.ok() && b != 0xFF);
  while (r.ok() && b == 0xFF) b = r.U8();
  return r.ok() ? b : 0;
}

// stb_image builds a Huffman table from its 16 code counts without checking
// that they add up to at most 256 codes; more would overrun its arrays. The
// tables of one segment are read as it reads them: one after another while
// the segment's length lasts, the last one possibly reaching past it.
bool HuffmanTablesFit(const uint8_t* tables, size_t available, int length) {
  size_t at = 0;
  for (int left = length - 2; left > 0;) {
    if (available < 17 || at > available - 17) return false;
    int codes = 0;
    for (int i = 1; i <= 16; ++i) codes += tables[at + i];
    if (codes > 256) return false;
    at += 17 + static_cast<size_t>(codes);
    left -= 17 + codes;
  }
  return true;
}

// Walks every segment the decoder will meet: segments are skipped by their
// lengths; between a scan's header and the next marker lies entropy-coded
// data, in which 0xFF is followed by 0 (a stuffed byte) or a restart marker.
// False for a Huffman table that does not fit or too many scans.
bool SegmentsAreSafe(const uint8_t* data, size_t size) {
  int scans = 0;
  size_t i = 2;
  while (i + 1 < size) {
    uint8_t m = data[i + 1];
    if (data[i] != 0xFF || m == 0xFF || m == 0x00 || (m >= 0xD0 && m <= 0xD7)) {
      i += data[i] == 0xFF && m != 0xFF ? 2 : 1;
      continue;
    }
    if (m == 0xD9 || i + 3 >= size) break;
    int length = data[i + 2] << 8 | data[i + 3];
    if (m == 0xC4 && !HuffmanTablesFit(data + i + 4, size - (i + 4), length)) return false;
    if (m == 0xDA && ++scans > kMaxJpegScans) return false;
    i += 2 + static_cast<size_t>(length);
  }
  return true;
}

}  // namespace

bool ReadJpegHeader(ByteSource& file, ImageHeader* header) {
  FieldReader r(file);
  if (r.U8() != 0xFF || r.U8() != 0xD8) return false;
  uint8_t m;
  while (!IsFrameMarker(m = NextMarker(r))) {
    if (!IsSegmentBeforeFrame(m)) return false;
    uint16_t length = r.U16be();
    if (length < 2) return false;
    r.Skip(length - 2u);
  }
  uint16_t length = r.U16be();
  uint8_t precision = r.U8();
  header->height = r.U16be();  // 0 would mean "given later", which no reader of ours takes
  header->width = r.U16be();
  int components = r.U8();
  if (!r.ok() || precision != 8 || (components != 1 && components != 3 && components != 4) ||
      length != 8 + 3 * components)
    return false;
  header->bitCount = components == 1 ? 8 : 24;
  if (components == 1) SetGreyTable(header, 256);
  return ImageHeaderIsReadable(*header);
}

BlockHandle ReadJpegPicture(const uint8_t* data, size_t size) {
  MemorySource source(data, size);
  ImageHeader header;
  if (!ReadJpegHeader(source, &header)) return 0;
  // The first scan that reaches a block spends at least one bit of Huffman
  // code on it, so a file of n bytes holds at most 8n blocks of its finest
  // component; a header claiming more lies about the size.
  uint64_t blocks = static_cast<uint64_t>((header.width + 7) / 8) * static_cast<uint64_t>((header.height + 7) / 8);
  if (blocks > static_cast<uint64_t>(size) * 8) return 0;
  if (!SegmentsAreSafe(data, size)) return 0;
  return DecodeWithStb(data, size, header);
}
