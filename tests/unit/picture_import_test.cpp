// The picture import as real photographs meet it: turned upright, colour
// profiles converted, reduced, transparency over the page's background,
// every reason a file cannot become a picture. The pictures are made by
// ImageMagick, exiftool and libjpeg; ImageMagick's own reading of the same
// files is what the import is compared with.
#include <cmath>
#include <cstdlib>
#include <string>

#include "base/dib.h"
#include "bench/photo_jpeg.h"
#include "pictures/picture_import.h"
#include "pictures/resampler.h"
#include "unit/image_bytes.h"
#include "unit/test_photos.h"
#include "unit/test_support.h"

namespace {

class PictureImport : public QuernalTest {
 protected:
  static ImportRequest ByContent(int32_t longestSide = kImportLongestSide, Colour background = 0xFFFFFF) {
    ImportRequest request;
    request.formats = ImportFormats::kByContent;
    request.longestSide = longestSide;
    request.background = background;
    return request;
  }
  // The file imported as the command line imports it, or a failed test.
  RgbPixels Imported(const std::string& path, ImportRequest request = ByContent(), ImportedPicture* out = nullptr) {
    ImportedPicture picture = ImportPictureFile(path.c_str(), request);
    EXPECT_NE(picture.dib, 0u) << path << ": " << ImportErrorText(picture);
    RgbPixels pixels = DibPixels(picture.dib);
    if (picture.dib) GlobalBlockFree(picture.dib);
    if (out) *out = picture;
    return pixels;
  }
  // The prepared photographs' folder with a separator, or "" after
  // skipping (failing under CI, where they must be there).
  std::string Prepared() {
    const std::string photos = PreparedPhotos();
    if (photos.empty()) {
      const char* ci = std::getenv("CI");
      if (ci && std::string(ci) == "true") ADD_FAILURE() << "QUERNAL_TEST_PHOTOS is not set";
      return "";
    }
    return photos + "/";
  }
#ifndef _WIN32
  std::string Colourful(const std::string& name, const std::string& options = "", int w = 300, int h = 200) {
    const std::string path = dir_.File(name);
    EXPECT_TRUE(MakeColourfulPicture(path, w, h, options)) << name;
    return path;
  }
#endif
};

}  // namespace

// The prepared photographs, read natively and under Wine alike.
TEST_F(PictureImport, PhotosComeOutUprightWhicheverWayTheCameraWasHeld) {
  const std::string photos = Prepared();
  if (photos.empty()) return;
  for (const char* order : {"MM", "II"}) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
      const std::string name = photos + order + std::to_string(orientation);
      ImportedPicture picture;
      const RgbPixels ours = Imported(name + ".jpg", ByContent(), &picture);
      EXPECT_EQ(ours.width, orientation >= 5 ? 200 : 300) << name;
      EXPECT_LT(MeanDifference(ours, ReadPpm(name + ".ppm")), 2.0) << name;
      EXPECT_EQ(picture.fileWidth, ours.width) << name;  // the file as a viewer shows it
    }
  }
  // A damaged EXIF block is passed over: the picture as stored.
  std::string damaged = ReadFile(photos + "MM6.jpg");
  const size_t ifd = damaged.find(std::string("MM\0*", 4));
  ASSERT_NE(ifd, std::string::npos);
  damaged[ifd + 4] = '\x7F';  // the first directory far past the block's end
  WriteFile(dir_.File("damaged.jpg"), damaged);
  EXPECT_LT(MeanDifference(Imported(dir_.File("damaged.jpg")), ReadPpm(photos + "MM1.ppm")), 2.0);
}

TEST_F(PictureImport, ProfiledPhotosShowTheColoursImageMagickShows) {
  const std::string photos = Prepared();
  if (photos.empty()) return;
  // Within ΔE 2 on average of what ImageMagick shows, and far closer than
  // the numbers as stored (RGB within 1, where ignoring the profile is off
  // by over 2; CMYK's numbers are no colours at all without it).
  const struct {
    const char* name;
    double within, asStoredBeyond;
  } cases[] = {{"p3.jpg", 1, 2}, {"p3-png.png", 1, 2}, {"adobe.jpg", 1, 2}, {"cmyk.jpg", 2, 5}, {"grey.jpg", 1, 0}};
  for (const auto& c : cases) {
    const std::string path = photos + c.name, base = path.substr(0, path.rfind('.'));
    const RgbPixels ours = Imported(path);
    const RgbPixels managed = ReadPpm(base + ".ppm");
    EXPECT_LT(MeanDeltaE(ours, managed), c.within) << c.name;
    EXPECT_GT(MeanDeltaE(ReadPpm(base + "-as-stored.ppm"), managed), c.asStoredBeyond) << c.name;
  }
}

// In both programs, 48 and 108-megapixel JPEGs and a progressive 4:4:4 one.
TEST_F(PictureImport, LargePhotosAreReducedToTheLongestSideKeepingTheirShape) {
  const struct {
    int width, height;
    bool progressive, fullChroma;
    int32_t longest;
    int wantW, wantH;
  } cases[] = {
      {8000, 6000, false, false, kImportLongestSide, 4000, 3000},  // 48 megapixels
      {6000, 8000, true, true, kImportLongestSide, 3000, 4000},    // progressive 4:4:4, portrait
      {12000, 9000, false, false, kImportLongestSide, 4000, 3000}, // 108 megapixels
      {4200, 2000, false, false, 0, 4200, 2000},                   // --full-size
      {3000, 2000, false, false, kImportLongestSide, 3000, 2000},  // small enough already
  };
  for (const auto& c : cases) {
    const std::string path = dir_.File("large.jpg");
    ASSERT_TRUE(WritePhotoJpeg(path, {c.width, c.height, 80, c.progressive, c.fullChroma}));
    const RgbPixels ours = Imported(path, ByContent(c.longest));
    EXPECT_EQ(ours.width, c.wantW) << c.width;
    EXPECT_EQ(ours.height, c.wantH) << c.width;
#ifndef _WIN32
    // ImageMagick's area average of the same file.
    const std::string size = std::to_string(c.wantW) + "x" + std::to_string(c.wantH);
    if (c.width * c.height <= 48000000) {
      EXPECT_LT(MeanDifference(ours, MagickPixels(path, "-scale " + size + "!")), 3.0) << c.width;
    }
#endif
  }
#ifndef _WIN32
  // A reduced picture of another format: exactly the area average.
  const std::string png = Colourful("wide.png", "", 2400, 1000);
  EXPECT_LT(MeanDifference(Imported(png, ByContent(1000)), MagickPixels(png, "-scale 1000x417!")), 1.0);
#endif
}

#ifndef _WIN32

TEST_F(PictureImport, TransparentPartsShowThePagesBackground) {
  const Colour blue = RGBColour(0, 0, 255);
  const std::string drawn = "-size 40x40 xc:none -fill '#FF000080' -draw 'rectangle 10,10 29,29' ";
  ASSERT_TRUE(Shell("convert " + drawn + "'" + dir_.File("cut.png") + "'"));
  ASSERT_TRUE(Shell("convert -size 40x40 xc:white -fill red -draw 'rectangle 10,10 29,29' -transparent white '" +
                    dir_.File("cut.gif") + "'"));
  ASSERT_TRUE(Shell("convert -size 40x40 xc:'#00FF00' -fill red -draw 'rectangle 10,10 29,29' -transparent '#00FF00' "
                    "PNG8:'" + dir_.File("palette.png") + "'"));
  const struct {
    const char* name;
    uint32_t centre;  // red, green, blue of the middle
  } cases[] = {{"cut.png", 0x7F0080}, {"cut.gif", 0xFF0000}, {"palette.png", 0xFF0000}};
  for (const auto& c : cases) {
    const RgbPixels p = Imported(dir_.File(c.name), ByContent(kImportLongestSide, blue));
    ASSERT_EQ(p.rgb.size(), 40u * 40 * 3) << c.name;
    const auto at = [&p](int x, int y) {
      const uint8_t* q = &p.rgb[(static_cast<size_t>(y) * 40 + x) * 3];
      return static_cast<uint32_t>(q[0]) << 16 | q[1] << 8 | q[2];
    };
    EXPECT_EQ(at(0, 0), 0x0000FFu) << c.name;
    EXPECT_NEAR(static_cast<int>(at(20, 20) >> 16), static_cast<int>(c.centre >> 16), 1) << c.name;
    EXPECT_NEAR(static_cast<int>(at(20, 20) & 255), static_cast<int>(c.centre & 255), 1) << c.name;
  }
}

TEST_F(PictureImport, EveryFileThatIsNoUsablePictureSaysWhy) {
  WriteFile(dir_.File("notes.txt"), "Shopping: bread, milk.");
  // A JPEG whose frame claims 20000 x 10050 pixels.
  ASSERT_TRUE(WritePhotoJpeg(dir_.File("huge.jpg"), {16, 16}));
  std::string huge = ReadFile(dir_.File("huge.jpg"));
  huge.replace(huge.find("\xFF\xC0") + 5, 4, image_bytes::Bytes({10050 >> 8, 10050 & 255, 20000 >> 8, 20000 & 255}));
  WriteFile(dir_.File("huge.jpg"), huge);
  const struct {
    std::string path;
    ImportFormats formats;
    ImportError error;
    std::string text;
  } cases[] = {
      {dir_.File("notes.txt"), ImportFormats::kSixRows, ImportError::kNotAPicture, "not a picture"},
      {dir_.File("absent.jpg"), ImportFormats::kByContent, ImportError::kUnreadableFile, "cannot be read"},
      {dir_.File("huge.jpg"), ImportFormats::kSixRows, ImportError::kTooLarge, "too large: 201 megapixels, at most 200"},
  };
  for (const auto& c : cases) {
    ImportRequest request = ByContent();
    request.formats = c.formats;
    const ImportedPicture picture = ImportPictureFile(c.path.c_str(), request);
    EXPECT_EQ(picture.dib, 0u) << c.path;
    EXPECT_EQ(picture.error, c.error) << c.path;
    EXPECT_EQ(ImportErrorText(picture), c.text) << c.path;
  }
}

#endif
