// Windows Imaging Component as the program uses it for a dropped file that
// none of its own readers takes: the pixels as stored with their alpha,
// profile and orientation, each failure as its ImportError, and the whole
// drop from the file to an upright Dib. Wine's codecs stand in for
// Windows': TIFF, JPEG and PNG, and no HEIF.
#include <windows.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/dib.h"
#include "base/program_win32.h"
#include "image_bytes.h"
#include "pictures/camera_formats.h"
#include "pictures/page_picture_win32.h"
#include "pictures/picture_import.h"
#include "pictures/wic_picture_win32.h"
#include "test_support.h"

namespace {

using image_bytes::Be32;
using image_bytes::Bytes;
using image_bytes::Le16;
using image_bytes::Le32;

std::string Be16(uint32_t v) { return Bytes({int(v >> 8 & 255), int(v & 255)}); }

// An uncompressed, little-endian TIFF of one strip.
struct TiffPicture {
  int width = 1;
  int height = 1;
  int samples = 3;          // 3 RGB, 4 RGB and alpha
  int extraSample = 2;      // the alpha's kind: 1 associated (premultiplied), 2 unassociated
  std::string pixels;       // rows top first, a byte a sample
  int orientation = 0;      // 0: no Orientation tag
  std::string icc;          // empty: no profile
  uint32_t stripBytes = 0;  // 0: the size of `pixels`; more promises data the file lacks
};

std::string Tiff(const TiffPicture& p) {
  struct Entry {
    int tag, type;
    uint32_t count;
    std::string value;  // the value's bytes; more than four go after the directory
  };
  std::string bits;
  for (int i = 0; i < p.samples; ++i) bits += Le16(8);
  std::vector<Entry> entries = {
      {256, 4, 1, Le32(p.width)},
      {257, 4, 1, Le32(p.height)},
      {258, 3, uint32_t(p.samples), bits},
      {259, 3, 1, Le16(1)},  // no compression
      {262, 3, 1, Le16(2)},  // RGB
      {273, 4, 1, Le32(0)},  // the strip's offset, set below
  };
  if (p.orientation) entries.push_back({274, 3, 1, Le16(p.orientation)});
  entries.push_back({277, 3, 1, Le16(p.samples)});
  entries.push_back({278, 4, 1, Le32(p.height)});
  entries.push_back({279, 4, 1, Le32(p.stripBytes ? p.stripBytes : uint32_t(p.pixels.size()))});
  entries.push_back({284, 3, 1, Le16(1)});  // samples interleaved
  if (p.samples == 4) entries.push_back({338, 3, 1, Le16(p.extraSample)});
  if (!p.icc.empty()) entries.push_back({34675, 7, uint32_t(p.icc.size()), p.icc});

  uint32_t offset = 8 + 2 + 12 * uint32_t(entries.size()) + 4;
  std::vector<uint32_t> at(entries.size(), 0);
  for (size_t i = 0; i < entries.size(); ++i)
    if (entries[i].value.size() > 4) {
      at[i] = offset;
      offset += uint32_t(entries[i].value.size() + 1) & ~1u;
    }
  entries[5].value = Le32(offset);
  std::string directory = Le16(uint32_t(entries.size())), after;
  for (size_t i = 0; i < entries.size(); ++i) {
    const Entry& e = entries[i];
    directory += Le16(e.tag) + Le16(e.type) + Le32(e.count);
    if (e.value.size() > 4) {
      directory += Le32(at[i]);
      after += e.value;
      if (e.value.size() % 2) after += '\0';
    } else {
      directory += e.value + std::string(4 - e.value.size(), '\0');
    }
  }
  return std::string("II*\0", 4) + Le32(8) + directory + Le32(0) + after + p.pixels;
}

// `jpeg` with an EXIF APP1 segment right after its SOI marker: a big-endian
// TIFF header and a directory with the Orientation tag alone, as many
// cameras write it.
std::string JpegWithOrientation(const std::string& jpeg, int orientation) {
  const std::string exif = std::string("Exif\0\0MM\0*", 10) + Be32(8) + Be16(1) + Be16(274) + Be16(3) + Be32(1) +
                           Be16(orientation) + Be16(0) + Be32(0);
  return jpeg.substr(0, 2) + "\xFF\xE1" + Be16(uint32_t(exif.size()) + 2) + exif + jpeg.substr(2);
}

constexpr uint64_t kPlenty = 100000000;

// A 3 x 2 picture of six colours, red first.
TiffPicture SixColours() {
  TiffPicture p;
  p.width = 3;
  p.height = 2;
  p.pixels = image_bytes::Rgbs({0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0x00FFFF, 0xFF00FF});
  return p;
}

std::string Rgba(const DecodedPixels& pixels) {
  return std::string(reinterpret_cast<const char*>(pixels.rgba.get()), size_t(pixels.width) * pixels.height * 4);
}

// RGBA bytes alike within `tolerance`, but for a fully transparent pixel's
// colour, which is nobody's business.
bool Alike(const std::string& got, const std::string& want, int tolerance) {
  if (got.size() != want.size()) return false;
  for (size_t i = 0; i < got.size(); ++i)
    if ((i % 4 == 3 || want[i | 3] != 0) && std::abs(uint8_t(got[i]) - uint8_t(want[i])) > tolerance) return false;
  return true;
}

// The opaque RGBA bytes of 0xRRGGBB colours.
std::string Opaque(const std::vector<uint32_t>& colours) {
  std::string s;
  for (uint32_t c : colours) s += image_bytes::Rgb(c) + '\xFF';
  return s;
}

}  // namespace

// What WIC hands over, file by file: size, pixels (premultiplied alpha
// comes back straight), the orientation still to apply and the profile as
// stored.
TEST_F(QuernalTest, WicHandsOverPixelsOrientationAndProfileAsStored) {
  TiffPicture turned = SixColours(), profiled = SixColours(), straight;
  turned.orientation = 6;
  profiled.icc = "a profile's bytes, as the file holds them";
  straight.width = 2;
  straight.samples = 4;
  straight.pixels = Bytes({200, 100, 50, 128, 10, 20, 30, 255});
  // (200, 100, 50) at half strength, stored premultiplied.
  TiffPicture premultiplied = straight;
  premultiplied.extraSample = 1;
  premultiplied.pixels = Bytes({100, 50, 25, 128, 10, 20, 30, 255});
  const std::string jpeg(reinterpret_cast<const char*>(image_bytes::kColourJpeg), sizeof image_bytes::kColourJpeg);
  const std::string pngRow = Bytes({255, 0, 0, 255, 0, 0, 255, 0, 10, 20, 30, 77});
  const std::string six = Opaque({0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0x00FFFF, 0xFF00FF});
  const struct {
    const char* name;
    std::string bytes;
    int width, height, orientation;
    bool alpha;
    std::string rgba;  // "" when not compared
    int tolerance;
    std::string icc;
  } cases[] = {
      {"turned.tif", Tiff(turned), 3, 2, 6, false, six, 0, ""},
      {"profiled.tif", Tiff(profiled), 3, 2, 1, false, six, 0, profiled.icc},
      {"straight.tif", Tiff(straight), 2, 1, 1, true, straight.pixels, 0, ""},
      {"premultiplied.tif", Tiff(premultiplied), 2, 1, 1, true, straight.pixels, 2, ""},
      {"turned.jfif", JpegWithOrientation(jpeg, 8), 16, 8, 8, false, "", 0, ""},
      {"upright.jfif", jpeg, 16, 8, 1, false, "", 0, ""},
      {"alpha.png", image_bytes::Png(3, 1, 8, 6, {pngRow}), 3, 1, 1, true, pngRow, 0, ""},
  };
  for (const auto& c : cases) {
    WriteFile(dir_.File(c.name), c.bytes);
    const DecodedPixels pixels = DecodeWithWic(dir_.File(c.name).c_str(), kPlenty);
    ASSERT_EQ(pixels.error, ImportError::kNone) << c.name;
    ASSERT_EQ(pixels.width, c.width) << c.name;
    ASSERT_EQ(pixels.height, c.height) << c.name;
    EXPECT_EQ(pixels.orientation, c.orientation) << c.name;
    EXPECT_EQ(pixels.hasAlpha, c.alpha) << c.name;
    EXPECT_EQ(std::string(pixels.icc.begin(), pixels.icc.end()), c.icc) << c.name;
    if (!c.rgba.empty()) {
      EXPECT_TRUE(Alike(Rgba(pixels), c.rgba, c.tolerance)) << c.name;
    }
  }
}

TEST_F(QuernalTest, WicReadsASixteenBitTiffWithAlphaByImageMagick) {
  // Beside the tests: meadow green on the left half, a half transparent
  // brick red on the right, 16 bits a sample.
  const DecodedPixels pixels = DecodeWithWic((ProgramFolder() + "Shore16.tif").c_str(), kPlenty);
  ASSERT_EQ(pixels.error, ImportError::kNone);
  ASSERT_EQ(pixels.width, 64);
  ASSERT_EQ(pixels.height, 48);
  EXPECT_TRUE(pixels.hasAlpha);
  for (int y : {0, 47})
    for (int x : {0, 31, 32, 63}) {
      const std::string expected = x < 32 ? Bytes({0x3C, 0x96, 0x46, 0xFF}) : Bytes({0xC8, 0x32, 0x14, 0x80});
      const char* at = reinterpret_cast<const char*>(pixels.rgba.get()) + (size_t(y) * 64 + x) * 4;
      EXPECT_EQ(std::string(at, 4), expected) << x << ", " << y;
    }
}

// Every reason a file gives no picture, and a size limit checked before
// anything is decoded (the limit itself is allowed).
TEST_F(QuernalTest, WicNamesWhyAFileGivesNoPicture) {
  TiffPicture huge;  // 20000 x 20000 pixels promised, a few bytes held
  huge.width = huge.height = 20000;
  huge.pixels = "RGB";
  huge.stripBytes = 20000u * 20000u * 3u;
  TiffPicture cut = SixColours();  // its strip stops half way
  cut.stripBytes = uint32_t(cut.pixels.size());
  cut.pixels.resize(cut.pixels.size() / 2);
  WriteFile(dir_.File("huge.tif"), Tiff(huge));
  WriteFile(dir_.File("six.tif"), Tiff(SixColours()));
  WriteFile(dir_.File("cut.tif"), Tiff(cut));
  WriteFile(dir_.File("notes.txt"), "Holidays: the first of May.\r\n");
  const struct {
    std::string path;
    uint64_t limit;
    ImportError error;
  } cases[] = {
      {dir_.File("huge.tif"), kPlenty, ImportError::kTooLarge},  {dir_.File("six.tif"), 6, ImportError::kNone},
      {dir_.File("six.tif"), 5, ImportError::kTooLarge},         {dir_.File("missing.tif"), kPlenty, ImportError::kUnreadableFile},
      {dir_.File("notes.txt"), kPlenty, ImportError::kNotAPicture}, {dir_.File("cut.tif"), kPlenty, ImportError::kDamaged},
  };
  for (const auto& c : cases) {
    const DecodedPixels pixels = DecodeWithWic(c.path.c_str(), c.limit);
    EXPECT_EQ(pixels.error, c.error) << c.path << " " << c.limit;
    if (c.error != ImportError::kNone) {
      EXPECT_FALSE(pixels.rgba) << c.path;
    }
  }
  EXPECT_EQ(DecodeWithWic(dir_.File("huge.tif").c_str(), kPlenty).filePixels, 400000000u);
  EXPECT_EQ(DecodeWithWic(nullptr, kPlenty).error, ImportError::kUnreadableFile);
  // The start of a HEIC: a camera format, which Wine has no codec for (and
  // which Windows with its codec finds damaged).
  WriteFile(dir_.File("photo.heic"), Be32(24) + "ftypheic" + Be32(0) + "mif1heic");
  const ImportError heic = DecodeWithWic(dir_.File("photo.heic").c_str(), kPlenty).error;
  EXPECT_TRUE(heic == ImportError::kUnsupported || heic == ImportError::kDamaged) << int(heic);
}

// The Windows build has no reader of its own for them.
TEST_F(QuernalTest, TheWindowsProgramsOwnReadersLeaveTheCameraFormatsToWic) {
  const std::string tiff = Tiff(SixColours());
  const auto* bytes = reinterpret_cast<const uint8_t*>(tiff.data());
  EXPECT_TRUE(LooksLikeCameraFormat(bytes, tiff.size()));
  EXPECT_EQ(DecodeCameraFormat(bytes, tiff.size(), kPlenty).error, ImportError::kUnsupported);
}

TEST_F(QuernalTest, ADroppedTiffBecomesAnUprightPicture) {
  // Stored 3 x 2 and to be turned a quarter clockwise: shown 2 x 3, with
  // the stored bottom-left corner (yellow) at the top left.
  TiffPicture picture = SixColours();
  picture.orientation = 6;
  const std::string path = dir_.File("dropped.tif");
  WriteFile(path, Tiff(picture));
  const BlockHandle dib = LoadDroppedPicture(nullptr, path.c_str(), 0xFFFFFF);
  ASSERT_NE(dib, 0u);
  {
    BlockLock lock(dib);
    const auto& header = *lock.as<BitmapInfoHeader>();
    EXPECT_EQ(header.biWidth, 2);
    EXPECT_EQ(std::abs(header.biHeight), 3);
    ASSERT_EQ(header.biBitCount, 24);
    // The top row is the last one stored in a bottom-up Dib.
    const uint8_t* bits = DibBits(lock.bytes());
    const size_t stride = DibRowStride(header.biWidth, header.biBitCount);
    const uint8_t* top = header.biHeight > 0 ? bits + stride * (header.biHeight - 1) : bits;
    EXPECT_EQ(top[0], 0x00);  // blue
    EXPECT_EQ(top[1], 0xFF);  // green
    EXPECT_EQ(top[2], 0xFF);  // red
    EXPECT_EQ(top[3], 0x00);  // the stored top-left red beside it
    EXPECT_EQ(top[5], 0xFF);
  }
  GlobalBlockFree(dib);
}
