// TIFF, WebP, HEIC and AVIF: recognised by their first bytes in every
// build; natively, files made here by ImageMagick and the codecs' own
// encoders decode to what ImageMagick decodes from the same files.
#include "pictures/camera_formats.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "image_bytes.h"
#include "test_support.h"

namespace {

using namespace image_bytes;

DecodedPixels Decode(const std::string& bytes, uint64_t maxPixels) {
  return DecodeCameraFormat(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), maxPixels);
}

}  // namespace

TEST(CameraFormats, AreRecognisedByTheirFirstBytes) {
  const std::string zero = Be32(0);
  const struct {
    const char* name;
    std::string bytes;
    bool camera;
  } cases[] = {
      {"TIFF, Intel order", std::string("II*\0\x08\0\0\0", 8), true},
      {"TIFF, Motorola order", std::string("MM\0*\0\0\0\x08", 8), true},
      {"BigTIFF", std::string("II+\0\x08\0\0\0", 8), true},
      {"WebP", "RIFF" + Le32(100) + "WEBPVP8 ", true},
      {"a RIFF file of sound", "RIFF" + Le32(100) + "WAVEfmt ", false},
      {"HEIC", Be32(24) + "ftypheic" + zero + "mif1heic", true},
      {"AVIF named among the compatible brands only", Be32(24) + "ftypisom" + zero + "mp41avis", true},
      {"a box that runs to the end of the file", zero + "ftypmsf1" + zero, true},
      {"an MP4 video", Be32(24) + "ftypisom" + zero + "isomiso2", false},
      {"a brand after the end of the box", Be32(20) + "ftypisom" + zero + "mp41heic", false},
      {"an ftyp box too small for its own fields", Be32(12) + "ftypheic" + zero, false},
      {"a box with a 64-bit size", Be32(1) + "ftypheic" + zero + "heic", false},
      {"JPEG", "\xFF\xD8\xFF\xE0" + Be32(16), false},
      {"PNG", "\x89PNG\r\n\x1a\n", false},
      {"three bytes of TIFF", "II*", false},
      {"nothing", "", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(LooksLikeCameraFormat(reinterpret_cast<const uint8_t*>(c.bytes.data()), c.bytes.size()), c.camera);
    // Headers with nothing behind them never make a picture.
    const DecodedPixels pixels = Decode(c.bytes, 1000000);
    EXPECT_FALSE(pixels.rgba);
    if (!c.camera) {
      EXPECT_EQ(pixels.error, ImportError::kNotAPicture);
    } else {
#ifdef _WIN32
      EXPECT_EQ(pixels.error, ImportError::kUnsupported);
#else
      EXPECT_NE(pixels.error, ImportError::kNone);
#endif
    }
  }
}

#ifndef _WIN32
namespace {

constexpr int kWidth = 600, kHeight = 400;
constexpr const char* kProfile = "/usr/share/color/icc/compatibleWithAdobeRGB1998.icc";

// A file made by a command of {photo} (a red to blue gradient with a green
// rectangle, carrying the colour profile), {alpha} (the same without the
// profile, fading from opaque at the top to clear at the bottom), {upside}
// (the photo turned over) into {out}; and what decoding it must give.
struct Encoding {
  const char* name;
  const char* file;
  const char* command;
  // The pixels expected: ImageMagick's decode of the file, or for lossy
  // formats the picture encoded (ImageMagick drops AVIF's alpha).
  const char* reference;  // nullptr: the file
  double meanDifference;  // 0: byte for byte
  bool alpha;
  int orientation;
  bool icc;
};

const Encoding kEncodings[] = {
    {"TIFF, 8 bits", "photo.tif", "convert {photo} -compress lzw {out}", nullptr, 0, false, 1, true},
    {"TIFF, 16 bits with alpha, Motorola order", "alpha16.tif",
     "convert {alpha} -depth 16 -define tiff:endian=msb -compress zip {out}", nullptr, 0, true, 1, false},
    {"TIFF, premultiplied alpha", "associated.tif", "convert {alpha} -define tiff:alpha=associated {out}", nullptr, 0.5,
     true, 1, false},
    {"TIFF, CMYK", "cmyk.tif", "convert {photo} +profile '*' -colorspace cmyk {out}", nullptr, 1, false, 1, false},
    {"TIFF, Orientation 6", "turned.tif",
     "convert {photo} +profile '*' {out} && exiftool -q -overwrite_original -Orientation#=6 {out}", nullptr, 0, false,
     6, false},
    {"WebP, lossy, EXIF orientation 8", "photo.webp",
     "cwebp -quiet -q 90 -metadata icc {photo} -o {out} && exiftool -q -overwrite_original -Orientation#=8 {out}",
     "photo.png", 1, false, 8, true},
    {"WebP, lossless with alpha", "alpha.webp", "cwebp -quiet -lossless -exact {alpha} -o {out}", nullptr, 0, true, 1,
     false},
    // The flag is a hint; libwebp decodes the alpha whatever it says.
    {"WebP, lossless, its alpha flag wrongly clear", "hint.webp",
     "cwebp -quiet -lossless -exact {alpha} -o {out} && perl -0777 -pi -e 'substr($_, 24, 1) &= \"\\xEF\"' {out}",
     "alpha.png", 0, true, 1, false},
    {"WebP, the first frame of an animation", "animation.webp", "img2webp -lossless {alpha} {upside} -o {out} 2>/dev/null",
     nullptr, 0, true, 1, false},
    {"HEIC", "photo.heic", "heif-enc -q 90 {photo} -o {out} >/dev/null", "photo.png", 1, false, 1, true},
    {"AVIF with alpha", "alpha.avif", "avifenc --min 8 --max 16 {alpha} {out} >/dev/null", "alpha.png", 1, true, 1,
     false},
};

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

bool Shell(const std::string& command) { return std::system(("set -e; " + command).c_str()) == 0; }

}  // namespace

TEST(CameraFormats, DecodeAsImageMagickDoes) {
  std::string missing;
  for (const char* tool : {"convert", "exiftool", "cwebp", "img2webp", "heif-enc", "avifenc"})
    if (!Shell(std::string("command -v ") + tool + " >/dev/null")) missing += std::string(" ") + tool;
  if (!FileExists(kProfile)) missing += std::string(" ") + kProfile;
  if (!missing.empty()) {
    const char* ci = std::getenv("CI");
    if (ci && std::string(ci) == "true") FAIL() << "missing:" << missing << " (run tools/setup-debian.sh)";
    GTEST_SKIP() << "missing:" << missing;
  }

  TempDir dir;
  const std::string photo = dir.File("photo.png"), alpha = dir.File("alpha.png"), upside = dir.File("upside.png");
  const std::string drawing = "-size 600x400 gradient:red-blue -fill '#20C040' -draw 'rectangle 100,80 300,240'";
  ASSERT_TRUE(Shell("convert " + drawing + " -alpha off -depth 8 -profile " + kProfile + " PNG24:" + photo));
  ASSERT_TRUE(Shell("convert " + drawing + " \\( -size 600x400 gradient:white-black \\) -compose CopyOpacity " +
                  "-composite -depth 8 PNG32:" + alpha));
  ASSERT_TRUE(Shell("convert " + photo + " +profile '*' -flip PNG24:" + upside));
  const std::string profile = ReadFile(kProfile);

  for (const Encoding& e : kEncodings) {
    SCOPED_TRACE(e.name);
    const std::string file = dir.File(e.file);
    std::string command = Replace(Replace(Replace(e.command, "{photo}", photo), "{alpha}", alpha), "{upside}", upside);
    command = Replace(command, "{out}", file);
    ASSERT_TRUE(Shell(command)) << command;
    const std::string bytes = ReadFile(file);
    const std::string reference = e.reference ? dir.File(e.reference) : file;
    ASSERT_TRUE(Shell("convert '" + reference + "[0]' -depth 8 rgba:" + file + ".rgba"));
    const std::string expected = ReadFile(file + ".rgba");
    ASSERT_EQ(expected.size(), size_t{kWidth} * kHeight * 4);

    DecodedPixels pixels = Decode(bytes, uint64_t{kWidth} * kHeight);
    ASSERT_EQ(pixels.error, ImportError::kNone);
    ASSERT_EQ(pixels.width, kWidth);
    ASSERT_EQ(pixels.height, kHeight);
    EXPECT_EQ(pixels.hasAlpha, e.alpha);
    bool transparent = false;
    for (size_t i = 3; i < expected.size(); i += 4) transparent |= pixels.rgba[i] != 255;
    EXPECT_EQ(transparent, pixels.hasAlpha);
    EXPECT_EQ(pixels.orientation, e.orientation);
    EXPECT_TRUE(std::string(pixels.icc.begin(), pixels.icc.end()) == (e.icc ? profile : ""))
        << pixels.icc.size() << " bytes of profile";
    const uint8_t* got = pixels.rgba.get();
    if (e.meanDifference == 0) {
      EXPECT_EQ(std::memcmp(got, expected.data(), expected.size()), 0);
    } else {
      double total = 0;
      for (size_t i = 0; i < expected.size(); ++i) total += std::abs(int(got[i]) - uint8_t(expected[i]));
      EXPECT_LE(total / expected.size(), e.meanDifference);
    }

    // One pixel over the limit: refused with the file's size, nothing decoded.
    pixels = Decode(bytes, uint64_t{kWidth} * kHeight - 1);
    EXPECT_EQ(pixels.error, ImportError::kTooLarge);
    EXPECT_EQ(pixels.filePixels, uint64_t{kWidth} * kHeight);
    EXPECT_FALSE(pixels.rgba);
    // Cut short, at the half or in the headers.
    for (size_t keep : {bytes.size() / 2, size_t{64}}) {
      pixels = Decode(bytes.substr(0, keep), uint64_t{kWidth} * kHeight);
      EXPECT_EQ(pixels.error, ImportError::kDamaged) << keep << " bytes";
      EXPECT_FALSE(pixels.rgba);
    }
  }
}
#endif
