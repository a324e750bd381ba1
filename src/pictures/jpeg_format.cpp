// JPEG: the frame header gives the size and the number of components (one
// is grey, four CMYK); libjpeg-turbo decodes baseline and progressive 8-bit
// files a band at a time, scaled down while decoding when the picture is to
// be reduced, so even 200-megapixel photographs never lie whole in memory.
// The EXIF orientation (APP1) and the colour profile (APP2) come with it.
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include <jpeglib.h>
#include <jerror.h>

#include "pictures/colour_profile.h"
#include "pictures/exif_orientation.h"
#include "pictures/format_readers.h"
#include "pictures/picture_import.h"
#include "pictures/resampler.h"

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

// A Huffman table's 16 code counts add up to at most 256 codes. The tables
// of one segment are read one after another while the segment's length
// lasts, the last one possibly reaching past it.
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
  // Decoded a band at a time, a JPEG may hold more than a whole Dib could,
  // up to kMaxJpegPixels.
  header->tooLarge = static_cast<uint64_t>(header->width) * static_cast<uint64_t>(header->height) > kMaxJpegPixels;
  return header->width >= 1 && header->height >= 1 && !header->tooLarge;
}


namespace {

// What libjpeg may hold at once: a progressive 200-megapixel picture keeps
// all its coefficients until the last scan.
constexpr long kMaxDecoderMemory = 1400L << 20;

struct JpegErrors {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
  ImportError error = ImportError::kNone;
};

void Fail(j_common_ptr decoder) {
  auto* errors = reinterpret_cast<JpegErrors*>(decoder->err);
  const int code = errors->manager.msg_code;
  errors->error = code == JERR_OUT_OF_MEMORY || code == JERR_NO_BACKING_STORE ? ImportError::kOutOfMemory
                                                                                : ImportError::kDamaged;
  std::longjmp(errors->jump, 1);
}

// A file that ends early or whose coded data is broken is damaged, though
// libjpeg would fill in grey and go on; other warnings (stray bytes before a
// marker) do not change the picture.
void Warn(j_common_ptr decoder, int level) {
  auto* errors = reinterpret_cast<JpegErrors*>(decoder->err);
  const int code = errors->manager.msg_code;
  if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC ||
                    code == JWRN_NOT_SEQUENTIAL || code == JWRN_BOGUS_PROGRESSION))
    errors->error = ImportError::kDamaged;
}

void Quiet(j_common_ptr) {}

// The smallest scale n/8 at which libjpeg's output still covers the size
// the picture is reduced to.
int DecodeScale(int32_t width, int32_t height, int32_t targetW, int32_t targetH) {
  for (int n = 1; n < 8; ++n)
    if ((static_cast<int64_t>(width) * n + 7) / 8 >= targetW && (static_cast<int64_t>(height) * n + 7) / 8 >= targetH)
      return n;
  return 8;
}

// The libjpeg calls, each behind its own jump: no frame between setjmp and
// longjmp owns anything that needs destroying.
bool ReadHeader(jpeg_decompress_struct* d, JpegErrors* errors, const uint8_t* data, size_t size) {
  if (setjmp(errors->jump)) return false;
  jpeg_create_decompress(d);
  d->mem->max_memory_to_use = kMaxDecoderMemory;
  jpeg_mem_src(d, data, static_cast<unsigned long>(size));
  jpeg_save_markers(d, JPEG_APP0 + 1, 0xFFFF);
  jpeg_save_markers(d, JPEG_APP0 + 2, 0xFFFF);
  return jpeg_read_header(d, TRUE) == JPEG_HEADER_OK;
}

bool Start(jpeg_decompress_struct* d, JpegErrors* errors, int scale, J_COLOR_SPACE space) {
  if (setjmp(errors->jump)) return false;
  d->scale_num = static_cast<unsigned>(scale);
  d->scale_denom = 8;
  d->out_color_space = space;
  d->dct_method = JDCT_ISLOW;
  return jpeg_start_decompress(d) == TRUE;
}

class RowTarget {
 public:
  virtual ~RowTarget() = default;
  virtual void Row(uint8_t* decoded) = 0;
};

bool ReadRows(jpeg_decompress_struct* d, JpegErrors* errors, uint8_t* row, RowTarget* target) {
  if (setjmp(errors->jump)) return false;
  JSAMPROW rows[1] = {row};
  while (d->output_scanline < d->output_height && errors->error == ImportError::kNone) {
    if (jpeg_read_scanlines(d, rows, 1) != 1) return false;
    target->Row(row);
  }
  return errors->error == ImportError::kNone;
}

void Destroy(jpeg_decompress_struct* d, JpegErrors* errors) {
  if (setjmp(errors->jump)) return;
  jpeg_destroy_decompress(d);
}

// The decoded rows turned into sRGB (or kept grey) and reduced.
class ReducingTarget : public RowTarget {
 public:
  ReducingTarget(DibResampler* reducer, const ToSrgb* profile, int components, size_t width)
      : reducer_(reducer), profile_(profile), components_(components), width_(width),
        converted_(components == 4 ? new (std::nothrow) uint8_t[width * 3] : nullptr) {}
  bool ok() const { return components_ != 4 || converted_; }
  void Row(uint8_t* decoded) override {
    if (components_ == 4) {
      if (*profile_) profile_->Convert(decoded, converted_.get(), width_);
      else CmykToBgr(decoded, converted_.get(), width_, true);
      reducer_->AddRow(converted_.get());
      return;
    }
    if (*profile_) profile_->Convert(decoded, decoded, width_);
    reducer_->AddRow(decoded);
  }

 private:
  DibResampler* reducer_;
  const ToSrgb* profile_;
  int components_;
  size_t width_;
  std::unique_ptr<uint8_t[]> converted_;
};

std::vector<uint8_t> IccProfile(jpeg_decompress_struct* d) {
  std::vector<uint8_t> icc;
  JOCTET* profile = nullptr;
  unsigned int length = 0;
  if (jpeg_read_icc_profile(d, &profile, &length) && profile) {
    try {
      icc.assign(profile, profile + length);
    } catch (const std::bad_alloc&) {
      icc.clear();  // shown as stored, rather than not at all
    }
  }
  std::free(profile);
  return icc;
}

int Orientation(jpeg_decompress_struct* d) {
  for (jpeg_saved_marker_ptr m = d->marker_list; m; m = m->next)
    if (m->marker == JPEG_APP0 + 1 && m->data_length >= 6 && std::memcmp(m->data, "Exif\0\0", 6) == 0)
      return ExifOrientation(m->data, m->data_length);
  return 1;
}

struct Decoder {
  jpeg_decompress_struct d{};
  JpegErrors errors;
  bool created = false;
  Decoder() {
    d.err = jpeg_std_error(&errors.manager);
    errors.manager.error_exit = Fail;
    errors.manager.emit_message = Warn;
    errors.manager.output_message = Quiet;
  }
  ~Decoder() {
    if (created) Destroy(&d, &errors);
  }
};

BlockHandle Decode(const uint8_t* data, size_t size, const ImageHeader& header, PictureDecode* decode) {
  Decoder j;
  j.created = true;  // jpeg_create_decompress comes first in ReadHeader, and cannot fail halfway
  if (!ReadHeader(&j.d, &j.errors, data, size)) return 0;
  decode->orientation = Orientation(&j.d);
  const int components = j.d.num_components;
  const bool grey = components == 1;
  const std::vector<uint8_t> icc = IccProfile(&j.d);
  const ToSrgb profile(icc, grey ? PixelLayout::kGrey
                                 : components == 4 ? (j.d.saw_Adobe_marker ? PixelLayout::kCmykInverted : PixelLayout::kCmyk)
                                                   : PixelLayout::kBgr);
  int32_t targetW, targetH;
  ReducedSize(header.width, header.height, decode->longestSide, &targetW, &targetH);
  const J_COLOR_SPACE space = grey ? JCS_GRAYSCALE : components == 4 ? JCS_CMYK : JCS_EXT_BGR;
  if (!Start(&j.d, &j.errors, DecodeScale(header.width, header.height, targetW, targetH), space)) {
    decode->error = j.errors.error;
    return 0;
  }
  const size_t width = j.d.output_width;
  std::unique_ptr<uint8_t[]> row(new (std::nothrow) uint8_t[width * static_cast<size_t>(j.d.output_components)]);
  DibResampler reducer(static_cast<int32_t>(width), static_cast<int32_t>(j.d.output_height), targetW, targetH,
                      grey ? 1 : 3);
  ReducingTarget target(&reducer, &profile, components, width);
  if (!row || !reducer.ok() || !target.ok()) {
    decode->error = ImportError::kOutOfMemory;
    return 0;
  }
  if (!ReadRows(&j.d, &j.errors, row.get(), &target)) {
    decode->error = j.errors.error == ImportError::kNone ? ImportError::kDamaged : j.errors.error;
    return 0;
  }
  return reducer.Finish();
}

}  // namespace

BlockHandle ReadJpegPicture(const uint8_t* data, size_t size, PictureDecode* decode) {
  MemorySource source(data, size);
  ImageHeader header;
  if (!ReadJpegHeader(source, &header)) return 0;
  // The first scan that reaches a block spends at least one bit of Huffman
  // code on it, so a file of n bytes holds at most 8n blocks of its finest
  // component; a header claiming more lies about the size.
  uint64_t blocks = static_cast<uint64_t>((header.width + 7) / 8) * static_cast<uint64_t>((header.height + 7) / 8);
  if (blocks > static_cast<uint64_t>(size) * 8) return 0;
  if (!SegmentsAreSafe(data, size)) return 0;
  return Decode(data, size, header, decode);
}
