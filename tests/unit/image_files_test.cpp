// Reading pictures from image files: the format table, each format's kinds
// of picture and the Dib they become, the information call against the
// read, the BMP writer, and files that are damaged or lie.
#include "pictures/image_files.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/dib.h"
#include "base/text.h"
#include "image_bytes.h"
#include "test_support.h"

namespace {

using namespace image_bytes;

using Values = std::vector<uint32_t>;

std::string Cut(const std::string& s, size_t drop) { return s.substr(0, s.size() - drop); }
// Samples of `depth` bits packed from the top bit down, as PNG, BMP and PCX rows are.
std::string Packed(const std::vector<int>& values, int depth) {
  std::string s((values.size() * depth + 7) / 8, '\0');
  for (size_t i = 0; i < values.size(); ++i)
    s[i * depth / 8] |= static_cast<char>(values[i] << (8 - depth - i * depth % 8));
  return s;
}

// 3 x 2 on a four-colour table whose entry 2, transparent, has the colour of entry 0.
std::string TransparentGif() {
  return GifScreen(3, 2, 0x81, Rgbs({0x112233, 0xFF0000, 0x112233, 0x00FF00})) + Bytes({0x21, 0xF9, 4, 1, 0, 0, 2, 0}) +
         GifImage(0, 0, 3, 2, 0, "", {0, 1, 2, 3, 2, 0}) + ";";
}

std::string Jpeg(const uint8_t* begin, const uint8_t* end) { return std::string(begin, end); }
std::string JpegOfSize(int width, int height) {
  std::string s = Jpeg(std::begin(kColourJpeg), std::end(kColourJpeg));
  return s.replace(s.find("\xFF\xC2") + 5, 4, Bytes({height >> 8, height & 255, width >> 8, width & 255}));
}

// A Dib read from a file, freed when the test ends.
class Picture {
 public:
  explicit Picture(const std::string& path) : path_(path), dib_(ReadImageFile(path.c_str(), &reportedBits)) {}
  ~Picture() {
    if (dib_) GlobalBlockFree(dib_);
  }
  bool ok() const { return dib_ != 0; }
  BlockHandle dib() const { return dib_; }
  const std::string& path() const { return path_; }
  BitmapInfoHeader Header() const {
    BitmapInfoHeader h{};
    if (dib_) std::memcpy(&h, BlockLock(dib_).bytes(), sizeof h);
    return h;
  }
  // The first `n` entries of the colour table as 0xRRGGBB.
  Values Colours(int n) const {
    BlockLock lock(dib_);
    Values colours;
    for (int i = 0; i < n; ++i) {
      RgbQuad q = DibColourTable(lock.bytes())[i];
      colours.push_back(static_cast<uint32_t>(q.rgbRed) << 16 | q.rgbGreen << 8 | q.rgbBlue);
    }
    return colours;
  }
  // Every pixel from the top row down, as the files are drawn: indexes for
  // palette Dibs, 0xRRGGBB for true colour.
  Values Pixels() const {
    BitmapInfoHeader h = Header();
    BlockLock lock(dib_);
    Values pixels;
    for (int y = h.biHeight - 1; y >= 0; --y) {
      const uint8_t* row = DibBits(lock.bytes()) + DibRowStride(h.biWidth, h.biBitCount) * y;
      for (int x = 0; x < h.biWidth; ++x) {
        int bits = h.biBitCount;
        const uint8_t* p = row + 3 * x;
        pixels.push_back(bits == 24 ? static_cast<uint32_t>(p[2]) << 16 | p[1] << 8 | p[0]
                                    : row[x * bits / 8] >> (8 - bits - x * bits % 8) & ((1 << bits) - 1));
      }
    }
    return pixels;
  }

  uint16_t reportedBits = 0;

 private:
  std::string path_;
  BlockHandle dib_;
};

// The Dib has the promised shape and a well-formed header, and the
// information call describes it exactly, colour table included, but for a
// transparent entry, which the file keeps and the Dib shows as the page's
// background (white).
void ExpectDib(const Picture& picture, int width, int height, int bits, int transparentEntry = -1) {
  ASSERT_TRUE(picture.ok()) << picture.path();
  BitmapInfoHeader h = picture.Header();
  EXPECT_EQ(h.biSize, 40u);
  EXPECT_EQ(h.biWidth, width);
  EXPECT_EQ(h.biHeight, height);
  EXPECT_EQ(h.biPlanes, 1);
  EXPECT_EQ(h.biBitCount, bits);
  EXPECT_EQ(h.biCompression, kBiRgb);
  EXPECT_EQ(h.biSizeImage, DibRowStride(width, bits) * height);
  EXPECT_EQ(h.biClrUsed, 0u);
  EXPECT_EQ(GlobalBlockSize(picture.dib()), 40 + 4 * DibColourTableEntries(bits) + h.biSizeImage);
  EXPECT_EQ(picture.reportedBits, bits);

  int32_t infoWidth = 0, infoHeight = 0;
  uint16_t infoBits = 0;
  uint8_t table[768];
  std::memset(table, 0xAB, sizeof table);  // left alone for true colour
  ASSERT_EQ(GetImageFileInformation(picture.path().c_str(), &infoWidth, &infoHeight, &infoBits, table), 1);
  EXPECT_EQ(infoWidth, width);
  EXPECT_EQ(infoHeight, height);
  EXPECT_EQ(infoBits, bits);
  Values expected = picture.Colours(DibColourTableEntries(bits)), got;
  expected.resize(256, bits <= 8 ? 0 : 0xABABAB);
  for (int i = 0; i < 256; ++i)
    got.push_back(static_cast<uint32_t>(table[3 * i]) << 16 | table[3 * i + 1] << 8 | table[3 * i + 2]);
  if (transparentEntry >= 0) {
    EXPECT_EQ(expected[transparentEntry], 0xFFFFFFu);
    expected[transparentEntry] = got[transparentEntry];
  }
  EXPECT_EQ(got, expected) << picture.path();
}

class ImageFiles : public QuernalTest {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) {
    std::string path = dir_.File(name);
    WriteFile(path, bytes);
    return path;
  }
  // The reader gives nothing; the information call gives `info`.
  void ExpectNoPicture(const std::string& name, const std::string& bytes, int info) {
    std::string path = Write(name, bytes);
    BlockHandle dib = ReadImageFile(path.c_str(), nullptr);
    EXPECT_EQ(dib, 0u) << name;
    if (dib) GlobalBlockFree(dib);
    EXPECT_EQ(GetImageFileInformation(path.c_str(), nullptr, nullptr, nullptr, nullptr), info) << name;
  }
};

}  // namespace

TEST(ImageFormatTable, ExtensionsMatchTheFileNameWithoutRegardToCase) {
  struct {
    const char* path;
    int index;
  } cases[] = {
      {"PHOTO.JPG", 0},
      {"a.Bmp", 1},
      {"a.PCX", 3},
      {"x.png", 5},
      {"C:\\Pictures\\holiday.2024.png", 5},
      {"C:photo.gif", 2},
      {"/home/me/old.pics/photo.tga", 4},
      {"photo.jpeg", -1},
      {"photo", -1},
      {"photo.", -1},
      {"pics.jpg/photo", -1},
      {"C:\\pics.jpg\\photo", -1},
      {"photo.png.bak", -1},
      {"", -1},
  };
  for (const auto& c : cases) EXPECT_EQ(FindImageFormat(c.path), c.index) << c.path;
  EXPECT_EQ(FindImageFormat(nullptr), -1);
}

// The open dialog's filter list is the one people know; the extensions and
// names by index are those of its rows.
TEST(ImageFormatTable, TheDialogFilterAndEveryIndexComeFromOneTable) {
  static const char kFilter[] =
      "JPEG files\0*.jpg\0BMP files\0*.bmp\0GIF files\0*.gif\0PCX files\0*.pcx\0TGA files\0*.tga\0PNG files\0*.png\0"
      "All files\0*.jpg;*.bmp;*.gif;*.pcx;*.tga;*.png\0";
  const std::string expected(kFilter, sizeof kFilter - 1);  // the list ends in two zeros
  const std::string filter = ImageFormatDialogFilter();
  ASSERT_EQ(filter, expected);
  char buffer[32];
  size_t at = 0;
  for (int i = 0; i < 6; ++i) {
    const std::string label = filter.c_str() + at, pattern = filter.c_str() + at + label.size() + 1;
    at += label.size() + pattern.size() + 2;
    EXPECT_EQ(label, std::string(ImageFormatName(i)) + " files");
    EXPECT_EQ(ImageFormatExtension(i, buffer, sizeof buffer), 6);
    EXPECT_EQ("*." + std::string(buffer), pattern);
    EXPECT_EQ(ImageFormatFilterName(i, buffer, sizeof buffer), 6);
    EXPECT_EQ(std::string(buffer), pattern.substr(2) + " files");
  }
  for (int bad : {6, 7, -1, INT_MIN}) {
    std::strcpy(buffer, "untouched");
    EXPECT_EQ(ImageFormatExtension(bad, buffer, sizeof buffer), -1) << bad;
    EXPECT_EQ(ImageFormatFilterName(bad, buffer, sizeof buffer), -1) << bad;
    EXPECT_EQ(ImageFormatName(bad), nullptr) << bad;
    EXPECT_STREQ(buffer, "untouched");
  }
  EXPECT_EQ(ImageFormatFilterName(0, buffer, 6), 6);
  EXPECT_STREQ(buffer, "jpg f") << "what fits, terminated";
}

// Every kind of picture of the six formats, as the Dib it becomes: BMP rows
// bottom-up or top-down, padded to four bytes; PCX runs that go on from one
// line into the next, planes of one bit or one plane of four; TGA maps and
// runs; PNG samples of every depth; GIF tables, frames and data that stops
// early (the rest is the background). Alpha is drawn over white, tables
// shorter than the bit count allows end in black.
TEST_F(ImageFiles, EveryKindOfPictureBecomesItsDib) {
  Values greys;
  for (uint32_t i = 0; i < 16; ++i) greys.push_back(i * 0x111111);
  std::string pcxEnd = "\x0C", pcxColours, gifLocal;
  for (uint32_t i = 0; i < 256; ++i) pcxEnd += Rgb(i << 16 | (255 - i) << 8 | 0x40), gifLocal += Rgb(i << 16 | (255 - i));
  for (uint32_t i = 0; i < 16; ++i) pcxColours += Rgb(i * 16 << 16 | (255 - i * 16));
  const std::string pad(2, '\0'), palette = Rgbs({0xFF0000, 0x00FF00, 0x0000FF});
  const std::string tga32 = Bgr(0xFF0000) + '\x80' + Bgr(0x00FF00) + '\0';
  const Values mono = {1, 0, 1, 1, 0, 0, 0, 0, 1, 1};
  // The EGA's sixteen colours, which a PCX file without a palette has.
  const Values ega = {0x000000, 0x0000AA, 0x00AA00, 0x00AAAA, 0xAA0000, 0xAA00AA, 0xAA5500, 0xAAAAAA,
                      0x555555, 0x5555FF, 0x55FF55, 0x55FFFF, 0xFF5555, 0xFF55FF, 0xFFFF55, 0xFFFFFF};
  const struct {
    const char* name;
    std::string bytes;
    int width, height, bits;
    int firstEntry;  // `colours` are the table's entries from this one on
    Values colours, pixels;
    int transparentEntry = -1;
  } cases[] = {
      {"eight.bmp", Bmp(3, 2, 8, {0x102030, 0xFF0000, 0x00FF00, 0x0000FF}, Bytes({0, 3, 1, 0, 1, 2, 3, 0})), 3, 2, 8,
       0, {0x102030, 0xFF0000, 0x00FF00, 0x0000FF, 0}, {1, 2, 3, 0, 3, 1}},
      {"sixteen.bmp", Bmp(5, 1, 4, greys, Packed({15, 0, 7, 8, 1}, 4) + '\0'), 5, 1, 4, 0, greys, {15, 0, 7, 8, 1}},
      {"two.bmp", Bmp(10, 1, 1, {0x204060, 0xF0E0D0}, Packed({1, 0, 0, 1, 1, 1, 0, 0, 0, 1}, 1) + pad), 10, 1, 1, 0,
       {0x204060, 0xF0E0D0}, {1, 0, 0, 1, 1, 1, 0, 0, 0, 1}},
      {"up.bmp", Bmp(2, 2, 24, {}, Bgr(0x0000FF) + Bgr(0xFFFFFF) + pad + Bgr(0xFF0000) + Bgr(0x00FF00) + pad), 2, 2, 24,
       0, {}, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF}},
      {"down.bmp", Bmp(2, -2, 24, {}, Bgr(0xFF0000) + Bgr(0x00FF00) + pad + Bgr(0x0000FF) + Bgr(0xFFFFFF) + pad), 2, 2,
       24, 0, {}, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF}},
      {"alpha.bmp", Bmp(3, 1, 32, {}, Bgr(0xFF0000) + '\xFF' + Bgr(0xFF0000) + '\x80' + Bgr(0xFF0000) + '\0'), 3, 1, 24,
       0, {}, {0xFF0000, 0xFF7F7F, 0xFFFFFF}},
      // OS/2 1.x: entries of three bytes, a table shorter than the bit count allows.
      {"os2.bmp",
       Os2Bmp(5, 2, 4, {0x102030, 0xFF0000, 0x00FF00}, Packed({2, 1, 0, 1, 2}, 4) + '\0' + Packed({0, 0, 1, 1, 2}, 4) + '\0'),
       5, 2, 4, 0, {0x102030, 0xFF0000, 0x00FF00, 0}, {0, 0, 1, 1, 2, 2, 1, 0, 1, 2}},
      // Ten 9s run on into the second line; 200 and 255 must be written as runs.
      {"eight.pcx", Pcx(5, 8, 1, 5, 3, 6, "", Bytes({0xCA, 9, 0xC1, 200, 1, 0, 1, 2, 3, 0xC1, 255, 0})) + pcxEnd, 5, 3,
       8, 200, {0xC83740}, {9, 9, 9, 9, 9, 9, 9, 9, 9, 200, 0, 1, 2, 3, 255}},
      // Plane n gives bit n of the index.
      {"planar.pcx", Pcx(5, 1, 4, 3, 1, 2, pcxColours, Bytes({0xA0, 0, 0x60, 0, 0xA0, 0, 0x60, 0})), 3, 1, 4, 10,
       {0xA0005F}, {5, 10, 15}},
      {"packed.pcx", Pcx(5, 4, 1, 3, 1, 2, pcxColours, Bytes({0x5A, 0xC1, 0xF0})), 3, 1, 4, 10, {0xA0005F}, {5, 10, 15}},
      // Version 3 carries no palette: the standard sixteen colours.
      {"standard.pcx", Pcx(3, 4, 1, 3, 1, 2, pcxColours, Bytes({0x5A, 0xC1, 0xF0})), 3, 1, 4, 0, ega, {5, 10, 15}},
      // One bit: the header's two colours, or black and white when it has none.
      {"mono.pcx", Pcx(5, 1, 1, 10, 1, 2, "", Bytes({0xB0, 0xC1, 0xC0})), 10, 1, 1, 0, {0, 0xFFFFFF}, mono},
      {"tinted.pcx", Pcx(5, 1, 1, 10, 1, 2, Rgb(0x112233) + Rgb(0x445566), Bytes({0xB0, 0xC1, 0xC0})), 10, 1, 1, 0,
       {0x112233, 0x445566}, mono},
      // 24 bits: each line holds a red, a green and a blue plane.
      {"rgb.pcx", Pcx(5, 8, 3, 2, 2, 2, "", Bytes({0xC1, 0xFF, 0, 0, 0x80, 0x10, 0xC1, 0xFF, 1, 2, 3, 4, 5, 6})), 2, 2,
       24, 0, {}, {0xFF0010, 0x0080FF, 0x010305, 0x020406}},
      {"mapped.tga", Tga(1, 1, 3, 24, 2, 2, 8, 0, Bgr(0xFF0000) + Bgr(0x00FF00) + Bgr(0x123456) + Bytes({2, 1, 0, 2})), 2,
       2, 8, 0, {0xFF0000, 0x00FF00, 0x123456, 0}, {0, 2, 2, 1}},
      {"fives.tga", Tga(1, 1, 2, 16, 2, 1, 8, 0, Le16(0x7C00) + Le16(0x001F) + Bytes({1, 0})), 2, 1, 8, 0,
       {0xFF0000, 0x0000FF}, {1, 0}},
      {"grey.tga", Tga(0, 11, 0, 0, 2, 2, 8, 0, Bytes({0x82, 0x40, 0x00, 0xC0})), 2, 2, 8, 0x80, {0x808080},
       {0x40, 0xC0, 0x40, 0x40}},
      {"raw.tga", Tga(0, 2, 0, 0, 2, 2, 24, 0, Bgr(0x0000FF) + Bgr(0x0000FF) + Bgr(0xFF0000) + Bgr(0x00FF00)), 2, 2, 24,
       0, {}, {0xFF0000, 0x00FF00, 0x0000FF, 0x0000FF}},
      {"runs.tga", Tga(0, 10, 0, 0, 2, 2, 24, 0x20, Bytes({0x01}) + Bgr(0xFF0000) + Bgr(0x00FF00) + Bytes({0x81}) +
                                                        Bgr(0x0000FF)),
       2, 2, 24, 0, {}, {0xFF0000, 0x00FF00, 0x0000FF, 0x0000FF}},
      // Alpha counts when the file says it has 8 attribute bits, not when it says none.
      {"alpha.tga", Tga(0, 2, 0, 0, 2, 1, 32, 8, tga32), 2, 1, 24, 0, {}, {0xFF7F7F, 0xFFFFFF}},
      {"opaque.tga", Tga(0, 2, 0, 0, 2, 1, 32, 0, tga32), 2, 1, 24, 0, {}, {0xFF0000, 0x00FF00}},
      {"eight.png", Png(3, 2, 8, 3, {Bytes({0, 1, 2}), Bytes({2, 2, 0})}, palette), 3, 2, 8, 0,
       {0xFF0000, 0x00FF00, 0x0000FF, 0}, {0, 1, 2, 2, 2, 0}},
      // A pixel that names an entry the palette lacks is black.
      {"beyond.png", Png(2, 1, 8, 3, {Bytes({1, 9})}, palette), 2, 1, 8, 3, {0}, {1, 3}},
      {"two.png", Png(5, 1, 2, 3, {Packed({2, 1, 0, 2, 1}, 2)}, palette), 5, 1, 4, 0, {0xFF0000}, {2, 1, 0, 2, 1}},
      // Grey: 8-bit samples are their own indexes; fewer bits get a ramp from black to white.
      {"grey.png", Png(3, 1, 8, 0, {Bytes({0, 0x7F, 0xFF})}), 3, 1, 8, 0x7F, {0x7F7F7F}, {0, 0x7F, 0xFF}},
      {"one.png", Png(9, 1, 1, 0, {Packed({1, 0, 0, 1, 1, 0, 1, 0, 1}, 1)}), 9, 1, 1, 0, {0, 0xFFFFFF},
       {1, 0, 0, 1, 1, 0, 1, 0, 1}},
      {"four.png", Png(4, 1, 2, 0, {Packed({3, 2, 1, 0}, 2)}), 4, 1, 4, 0, {0, 0x555555, 0xAAAAAA, 0xFFFFFF, 0},
       {3, 2, 1, 0}},
      {"greyalpha.png", Png(2, 1, 8, 4, {Bytes({0x00, 0x80, 0x40, 0xFF})}), 2, 1, 8, 0, {}, {0x7F, 0x40}},
      {"rgb.png", Png(2, 1, 8, 2, {Rgbs({0x102030, 0xABCDEF})}), 2, 1, 24, 0, {}, {0x102030, 0xABCDEF}},
      {"rgba.png", Png(3, 1, 8, 6, {Rgb(0xFF0000) + '\xFF' + Rgb(0xFF0000) + '\x80' + Rgb(0x123456) + '\0'}), 3, 1, 24,
       0, {}, {0xFF0000, 0xFF7F7F, 0xFFFFFF}},
      // 16-bit samples cut to 8.
      {"deep.png", Png(1, 1, 16, 2, {Bytes({0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC})}), 1, 1, 24, 0, {}, {0x12569A}},
      // Transparent pixels get index 2, shown white; opaque ones of its colour keep index 0.
      {"four.gif", TransparentGif(), 3, 2, 4, 0, {0x112233, 0xFF0000, 0xFFFFFF, 0x00FF00, 0}, {0, 1, 2, 3, 2, 0}, 2},
      // A first image with a table of its own over part of the screen; the rest is the background, 9.
      {"framed.gif", GifScreen(4, 3, 0, "", 9) + GifImage(1, 1, 2, 2, 0x87, gifLocal, {7, 200, 255, 0}) + ";", 4, 3, 8,
       200, {0xC80037}, {9, 9, 9, 9, 9, 7, 200, 9, 9, 255, 0, 9}},
      {"stops.gif", GifScreen(3, 1, 0x81, Rgbs({0x112233, 0x445566, 0, 0}), 1) + GifImage(0, 0, 3, 1, 0, "", {0}) + ";",
       3, 1, 4, 0, {0x112233, 0x445566}, {0, 1, 1}},
      {"two.gif", GifScreen(2, 1, 0x80, Rgbs({0xFFFFFF, 0x000000})) + GifImage(0, 0, 2, 1, 0, "", {1, 0}) + ";", 2, 1, 1,
       0, {0xFFFFFF, 0}, {1, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Picture picture(Write(c.name, c.bytes));
    ExpectDib(picture, c.width, c.height, c.bits, c.transparentEntry);
    if (!picture.ok()) continue;
    EXPECT_EQ(picture.Pixels(), c.pixels);
    if (c.bits > 8) continue;
    const Values table = picture.Colours(c.firstEntry + static_cast<int>(c.colours.size()));
    EXPECT_EQ(Values(table.begin() + c.firstEntry, table.end()), c.colours);
  }
}

const Values kSixteenColours = {0x400000, 0x0F0F0F, 0x5E1E1E, 0x2D2D2D, 0x7C3C3C, 0x0B4B4B, 0x1A5A5A, 0x6969E9,
                                 0x3878B8, 0x8787C7, 0x96D6D6, 0xE5A5A5, 0xB4F4F4, 0xC3C3C3, 0x92D2D2, 0xE1E1E1};
// A 5 x 3 RLE4 picture of every code (on 16 colours, bottom row first): runs
// of two nibbles, five and three as they are, a move, and the end.
const std::string kEveryRle4Code = Bytes({2, 0x12, 0, 3, 0x34, 0x50, 0, 0, 0, 5, 0x67, 0x89, 0xA0, 0, 0, 0, 0, 2, 2,
                                          0, 3, 0xBC, 0, 1});

// Run-length coded files (RLE8, RLE4) become palette Dibs: every code, runs
// cut at the row's end, moves that leave pixels at index 0 or end the
// picture, and data that ends before the picture does (refused, like any BMP
// cut short).
TEST_F(ImageFiles, RunLengthCodedBmpsBecomePaletteDibs) {
  const Values table = kSixteenColours;
  const std::string eol = Bytes({0, 0}), end = Bytes({0, 1});
  struct Case {
    const char* what;
    int bits, compression;  // 1: RLE8, 2: RLE4
    std::string codes;
    Values pixels;  // 5 x 3, top row first; none: refused
    int32_t height = 3;
    int info = 1;   // what the information call says of a refused file
  };
  const Case cases[] = {
      {"RLE8: a run, three as they are, a move, the end", 8, 1,
       Bytes({2, 5, 0, 3, 1, 2, 3, 0}) + eol + Bytes({0, 2, 1, 1, 2, 4}) + end,
       {0, 4, 4, 0, 0, 0, 0, 0, 0, 0, 5, 5, 1, 2, 3}},
      {"RLE4: every code", 4, 2, kEveryRle4Code, {0, 0, 11, 12, 11, 6, 7, 8, 9, 10, 1, 2, 3, 4, 5}},
      {"a run past the row's end is cut there", 8, 1, Bytes({7, 3}) + eol + Bytes({2, 1}) + end,
       {0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 3, 3, 3, 3, 3}},
      {"a move past the top ends the picture", 4, 2, Bytes({3, 0x11, 0, 2, 9, 7}),
       {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 0, 0}},
      {"the last row ended, no end code", 8, 1, Bytes({5, 1}) + eol + eol + Bytes({5, 2}) + eol,
       {2, 2, 2, 2, 2, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1}},
      {"the data ends in the middle", 8, 1, Bytes({5, 1}) + eol + Bytes({5, 2}), {}},
      {"indexes as they are, cut short", 8, 1, Bytes({0, 5, 1, 2}), {}},
      {"an index past the table", 8, 1, Bytes({2, 0x20}) + end, {}},
      {"rows stored top-down", 8, 1, end, {}, -3, 0},
      {"RLE8 for 4 bits", 4, 1, end, {}, 3, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string bytes = Bmp(5, c.height, c.bits, table, c.codes, c.compression);
    if (c.pixels.empty()) {
      ExpectNoPicture("rle.bmp", bytes, c.info);
      continue;
    }
    Picture picture(Write("rle.bmp", bytes));
    ExpectDib(picture, 5, 3, c.bits);
    EXPECT_EQ(picture.Pixels(), c.pixels);
  }

  // An OS/2 1.x file cut short.
  ExpectNoPicture("os2cut.bmp", Cut(Os2Bmp(2, 2, 24, {}, std::string(16, '\x40')), 1), 1);
}

#ifndef _WIN32
// What ImageMagick writes of the BMP kinds beyond the Windows ones (RLE8 and
// OS/2 1.x of 1, 4, 8 and 24 bits), and the RLE4 file above, read to the
// colours ImageMagick reads.
TEST_F(ImageFiles, BmpKindsReadAsImageMagickReadsThem) {
  if (std::system("command -v convert >/dev/null") != 0) {
    const char* ci = std::getenv("CI");
    if (ci && std::string(ci) == "true") FAIL() << "ImageMagick's convert is missing (run tools/setup-debian.sh)";
    GTEST_SKIP() << "ImageMagick's convert is missing";
  }
  const std::string plasma = "convert -size 61x37 -seed 3 plasma:fractal ";
  const std::pair<const char*, std::string> files[] = {
      {"rle8.bmp", plasma + "-colors 40 -type Palette -compress RLE BMP3:"},
      {"os2-1.bmp", plasma + "-monochrome BMP2:"},
      {"os2-4.bmp", plasma + "-colors 16 BMP2:"},
      {"os2-8.bmp", plasma + "-colors 100 -type Palette BMP2:"},
      {"os2-24.bmp", plasma + "-type TrueColor BMP2:"},
      {"rle4.bmp", ""},
  };
  WriteFile(dir_.File("rle4.bmp"), Bmp(5, 3, 4, kSixteenColours, kEveryRle4Code, 2));
  for (const auto& [name, make] : files) {
    SCOPED_TRACE(name);
    const std::string path = dir_.File(name);
    if (!make.empty()) {
      ASSERT_EQ(std::system((make + "'" + path + "'").c_str()), 0);
    }
    ASSERT_EQ(std::system(("convert '" + path + "' -depth 8 'rgb:" + path + ".rgb'").c_str()), 0);
    Picture picture(path);
    ASSERT_TRUE(picture.ok());
    const int bits = picture.Header().biBitCount;
    const Values colours = bits <= 8 ? picture.Colours(1 << bits) : Values{};
    std::string rgb;
    for (uint32_t p : picture.Pixels()) rgb += Rgb(bits <= 8 ? colours[p] : p);
    EXPECT_TRUE(rgb == ReadFile(path + ".rgb"));
  }
}
#endif

TEST_F(ImageFiles, BmpWriterRoundTripsEveryKindByteForByte) {
  // Widths without row padding, whose bytes a reader has no reason to keep.
  const std::pair<int, int> kinds[] = {{32, 1}, {8, 4}, {8, 8}, {4, 24}};
  for (auto [width, bits] : kinds) {
    BlockHandle dib = MakePatternDib(width, 5, bits, 7);
    {
      // Distinct colours, so every index reads back as itself.
      BlockLock lock(dib);
      for (uint32_t i = 0; i < DibColourTableEntries(bits); ++i)
        DibColourTable(lock.bytes())[i] = RgbQuad{uint8_t(i), uint8_t(255 - i), uint8_t(i * 7), 0};
    }
    std::string path = Write("round" + std::to_string(bits) + ".bmp", "an older file");
    ASSERT_TRUE(WriteBmpFile(path.c_str(), dib));
    std::vector<uint8_t> block = BlockBytes(dib);
    std::string offset = Le32(14 + 40 + 4 * DibColourTableEntries(bits));
    EXPECT_EQ(ReadFile(path),
              "BM" + Le32(14 + block.size()) + Le32(0) + offset + std::string(block.begin(), block.end()));
    Picture back(path);
    ExpectDib(back, width, 5, bits);
    EXPECT_EQ(BlockBytes(back.dib()), block) << bits << " bits";
    GlobalBlockFree(dib);
  }
}

// A block that is not a Dib is not written, and the file there stays.
TEST_F(ImageFiles, BmpWriterRefusesWhatIsNoDib) {
  std::string kept = Write("kept.bmp", "old");
  BlockHandle notDib = GlobalBlockAlloc(10);
  EXPECT_FALSE(WriteBmpFile(kept.c_str(), notDib));
  EXPECT_FALSE(WriteBmpFile(kept.c_str(), 0));
  EXPECT_EQ(ReadFile(kept), "old");
  GlobalBlockFree(notDib);
}

TEST_F(ImageFiles, JpegsGreyAndColour) {
  Picture grey(Write("grey.jpg", Jpeg(std::begin(kGreyJpeg), std::end(kGreyJpeg))));
  ExpectDib(grey, 8, 8, 8);
  EXPECT_EQ(grey.Colours(256)[0x90], 0x909090u);
  Values pixels = grey.Pixels();  // white at the top, black at the bottom
  EXPECT_GE(pixels[3], 240u);
  EXPECT_LE(pixels[7 * 8 + 3], 15u);
  for (int y = 1; y < 8; ++y) EXPECT_LT(pixels[y * 8 + 3], pixels[(y - 1) * 8 + 3]);

  Picture colour(Write("colour.JPG", Jpeg(std::begin(kColourJpeg), std::end(kColourJpeg))));
  ExpectDib(colour, 16, 8, 24);
  uint32_t top = colour.Pixels()[8], bottom = colour.Pixels()[7 * 16 + 8];  // red above, blue below
  EXPECT_GT(top >> 16, 200u);
  EXPECT_LT(top & 0xFF, 60u);
  EXPECT_LT(bottom >> 16, 60u);
  EXPECT_GT(bottom & 0xFF, 200u);
}

TEST_F(ImageFiles, UnknownMissingAndEmptyFilesGiveNothing) {
  std::string bmp = Bmp(1, 1, 24, {}, Bgr(0x123456) + '\0');
  // A good picture under a name the table does not know is not opened.
  std::string jpeg = Write("photo.jpeg", bmp);
  uint16_t bits = 77;
  EXPECT_EQ(ReadImageFile(jpeg.c_str(), &bits), 0u);
  EXPECT_EQ(bits, 77);
  EXPECT_EQ(GetImageFileInformation(jpeg.c_str(), nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(ReadImageFile(nullptr, nullptr), 0u);
  EXPECT_EQ(ReadImageFile("", nullptr), 0u);
  std::string absent = dir_.File("absent.png");
  EXPECT_EQ(ReadImageFile(absent.c_str(), nullptr), 0u);
  EXPECT_EQ(GetImageFileInformation(absent.c_str(), nullptr, nullptr, nullptr, nullptr), 0);
  // Every reader checks what the file holds, not only its name.
  char extension[8];
  for (int i = 0; ImageFormatExtension(i, extension, sizeof extension) > 0; ++i) {
    if (std::string(extension) != "bmp") ExpectNoPicture(std::string("bmp.") + extension, bmp, 0);
    ExpectNoPicture(std::string("empty.") + extension, "", 0);
  }
  // Every output of the information call may be left out.
  EXPECT_EQ(GetImageFileInformation(Write("good.bmp", bmp).c_str(), nullptr, nullptr, nullptr, nullptr), 1);
}

TEST_F(ImageFiles, FilesCutShortGiveNothingThoughTheirHeadersRead) {
  ExpectNoPicture("cut.bmp", Cut(Bmp(2, 2, 24, {}, std::string(16, '\x40')), 1), 1);
  ExpectNoPicture("cut.tga", Cut(Tga(0, 2, 0, 0, 2, 2, 24, 0, std::string(12, '\x40')), 1), 1);
  ExpectNoPicture("cutruns.tga", Tga(0, 10, 0, 0, 2, 2, 24, 0, Bytes({0x82}) + Bgr(0x112233)), 1);  // 3 of 4 pixels
  ExpectNoPicture("cut.pcx", Pcx(5, 8, 3, 2, 2, 2, "", Bytes({0xCC})), 1);  // a run without its byte
  ExpectNoPicture("cut.png", Cut(Png(8, 8, 8, 0, std::vector<std::string>(8, "01234567")), 20), 1);
  ExpectNoPicture("cut.gif", Cut(TransparentGif(), 4), 1);
  std::string colour = Jpeg(std::begin(kColourJpeg), std::end(kColourJpeg));
  ExpectNoPicture("cut.jpg", colour.substr(0, colour.size() / 2), 1);
  ExpectNoPicture("noend.jpg", Cut(Jpeg(std::begin(kGreyJpeg), std::end(kGreyJpeg)), 2), 1);
}

TEST_F(ImageFiles, HeadersThatLieGiveNothing) {
  // Far beyond what a picture may take: refused from the header alone.
  const std::string few(64, '\0');
  ExpectNoPicture("huge.bmp", Bmp(100000, 100000, 24, {}, few), 0);
  ExpectNoPicture("huge.png", Png(70000, 70000, 8, 2, {Rgb(0)}), 0);
  ExpectNoPicture("huge.tga", Tga(0, 2, 0, 0, 65535, 65535, 24, 0, few), 0);
  ExpectNoPicture("huge.pcx", Pcx(5, 8, 3, 65535, 65535, 65535, "", few), 0);
  ExpectNoPicture("huge.gif",
                  GifScreen(65535, 65535, 0x87, std::string(768, '\0')) + GifImage(0, 0, 1, 1, 0, "", {1}) + ";", 0);
  ExpectNoPicture("huge.jpg", JpegOfSize(65000, 65000), 0);
  // A 1-bit screen the Dib could hold, but the decoder would need 38 GB for it.
  ExpectNoPicture("wide.gif",
                  GifScreen(65535, 65535, 0x80, Rgbs({0, 0xFFFFFF})) + GifImage(0, 0, 1, 1, 0, "", {1}) + ";", 1);
  // Sizes a picture may have, with data for a few pixels: refused before any Dib is made.
  ExpectNoPicture("tall.bmp", Bmp(8000, 8000, 8, {0, 0xFFFFFF}, few), 1);
  ExpectNoPicture("tall.tga", Tga(0, 2, 0, 0, 8000, 8000, 24, 0, few), 1);
  ExpectNoPicture("tall.pcx", Pcx(5, 8, 3, 8000, 8000, 8000, "", few), 1);
  ExpectNoPicture("tall.jpg", JpegOfSize(8000, 8000), 1);
  // Nothing to show.
  ExpectNoPicture("zero.bmp", Bmp(0, 1, 24, {}, ""), 0);
  ExpectNoPicture("zero.png", Png(0, 1, 8, 0, {""}), 0);
  ExpectNoPicture("zero.tga", Tga(0, 2, 0, 0, 0, 1, 24, 0, ""), 0);
  ExpectNoPicture("zero.gif", GifScreen(0, 0, 0x80, Rgbs({0, 0xFFFFFF})) + GifImage(0, 0, 0, 0, 0, "", {}) + ";", 0);
  ExpectNoPicture("zero.jpg", JpegOfSize(16, 0), 0);
  // Tables that do not hold what the pixels need: a BMP index past its two
  // entries, an 8-bit PCX without its end palette, a TGA map that starts at entry 1.
  ExpectNoPicture("index.bmp", Bmp(1, 1, 8, {0, 0xFFFFFF}, Bytes({5, 0, 0, 0})), 1);
  ExpectNoPicture("nopalette.pcx", Pcx(5, 8, 1, 2, 2, 2, "", std::string(4, '\1')) + std::string(769, '\0'), 0);
  ExpectNoPicture("short.pcx", Pcx(5, 8, 1, 2, 2, 2, "", std::string(4, '\1')), 0);
  std::string shifted = Tga(1, 1, 1, 24, 1, 1, 8, 0, Bgr(0xFF0000) + Bytes({0}));
  shifted[3] = 1;
  ExpectNoPicture("shifted.tga", shifted, 0);
  // Indexes into a TGA map of 24 bits each.
  ExpectNoPicture("deep.tga", Tga(1, 1, 2, 24, 1, 1, 24, 0, Bgr(0xFF0000) + Bgr(0x00FF00) + Bytes({1, 0, 0})), 0);
  // A Huffman table with more than 256 codes.
  std::string greyJpeg = Jpeg(std::begin(kGreyJpeg), std::end(kGreyJpeg));
  size_t counts = greyJpeg.find("\xFF\xC4") + 5;
  greyJpeg[counts + 14] = greyJpeg[counts + 15] = '\xFF';
  ExpectNoPicture("codes.jpg", greyJpeg, 1);
}
