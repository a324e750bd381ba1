// Writes the starting corpus of the fuzzers into FOLDER/calendar-seeds,
// FOLDER/text-seeds and FOLDER/image-seeds, and makes the empty working
// corpora beside them.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <lcms2.h>

#include "base/dib.h"
#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "pictures/image_files.h"
#include "image_bytes.h"

namespace {

using namespace image_bytes;

BlockHandle SmallPicture(int width, int height, int bits) {
  BlockHandle dib = DibCreate(width, height, static_cast<uint16_t>(bits));
  BlockLock lock(dib);
  for (uint32_t i = sizeof(BitmapInfoHeader); i < GlobalBlockSize(dib); ++i) lock.bytes()[i] = static_cast<uint8_t>(i * 7);
  return dib;
}

void SaveSeed(const std::string& path, bool cover, std::initializer_list<int> months) {
  CalendarDocument doc = CreateCalendar(2026, 0);
  CalendarHeader h;
  GetHeader(doc, &h);
  if (cover) {
    h.CoverPicture = SmallPicture(6, 5, 24);
    h.CoverPictureShowPicture = 1;
  }
  PutHeader(doc, &h);
  for (int m : months) {
    MonthPage p;
    GetMonthPage(doc, m, &p);
    p.Picture = SmallPicture(5 + m, 4, m % 2 ? 4 : 8);
    PutMonthPage(doc, m, &p);
  }
  SilentProgress progress;
  SaveCalendar(&progress, path.c_str(), doc);
  FreeCalendar(doc);
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}
void WriteBytes(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// A calendar whose March picture comes as `stream`, with `dataSize` stated:
// the shapes of stream the loader reads as far as they go.
void SaveStreamSeed(const std::string& path, const std::string& stream, uint32_t dataSize) {
  SaveSeed(path, false, {});
  std::string bytes = ReadBytes(path);
  const size_t march = kHeaderSize + 2 * kMonthPageSize;
  const uint32_t one = 1, length = static_cast<uint32_t>(kMonthPageSize + stream.size());
  std::memcpy(&bytes[march + 4], &length, 4);
  std::memcpy(&bytes[march + offsetof(MonthPage, Picture)], &one, 4);
  std::memcpy(&bytes[march + offsetof(MonthPage, PictureDataSize)], &dataSize, 4);
  WriteBytes(path, bytes.insert(march + kMonthPageSize, stream));
}

void SaveStreamSeeds(const std::string& folder) {
  BlockHandle picture = SmallPicture(9, 6, 8);
  const std::string dib(reinterpret_cast<const char*>(BlockLock(picture).bytes()), GlobalBlockSize(picture));
  GlobalBlockFree(picture);
  const uint32_t size = static_cast<uint32_t>(dib.size());
  const std::string whole = Zlib(dib);
  SaveStreamSeed(folder + "/no-adler.CLN", whole.substr(0, whole.size() - 4), size);
  SaveStreamSeed(folder + "/stops-short.CLN", Deflated({{dib.substr(0, size / 2), Z_FULL_FLUSH}}), size);
  SaveStreamSeed(folder + "/runs-on.CLN", Zlib(dib + std::string(700, 'x')), size);
  SaveStreamSeed(folder + "/size-unstated.CLN", whole.substr(0, whole.size() - 4), 0);
}

// Small pictures of the six image formats, written byte by byte.

// Rows of `rowBytes` pattern bytes, each after its filter byte.
std::string Png(int width, int height, int depth, int colourType, int rowBytes, const std::string& palette) {
  std::string scanlines;
  for (int y = 0; y < height; ++y) {
    scanlines += static_cast<char>(y % 5);  // every filter type
    for (int x = 0; x < rowBytes; ++x) scanlines += static_cast<char>(x * 37 + y * 11);
  }
  return PngOfScanlines(width, height, depth, colourType, scanlines, palette);
}

// A 4 x 3 GIF on a four-colour table with a transparent index.
std::string Gif() {
  return GifScreen(4, 3, 0x81, Rgbs({0, 0xFF0000, 0x00FF00, 0x0000FF})) + Bytes({0x21, 0xF9, 4, 1, 0, 0, 2, 0}) +
         GifImage(0, 0, 4, 3, 0, "", {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3}) + ";";
}

// A 4 x 3 PCX with sixteen header colours.
std::string Pcx(int bitsPerPlane, int planes, int bytesPerLine, const std::string& coded) {
  std::string colours;
  for (int i = 0; i < 16; ++i) colours += Bytes({i * 16, 255 - i * 16, i});
  return image_bytes::Pcx(5, bitsPerPlane, planes, 4, 3, bytesPerLine, colours, coded);
}

// A 4 x 3 TGA, with a 24-bit map when it has one.
std::string Tga(int mapType, int imageType, int mapLength, int depth, int descriptor, const std::string& rest) {
  return image_bytes::Tga(mapType, imageType, mapLength, mapLength ? 24 : 0, 4, 3, depth, descriptor, rest);
}

// A calendar with a picture on every page whose every other number is
// `value`: what a damaged or hostile file holds, for the renderer.
void SaveExtremeSeed(const std::string& path, uint32_t value) {
  SaveSeed(path, true, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  std::string bytes = ReadBytes(path);
  for (size_t at = 0, next; at + kHeaderSize <= bytes.size(); at = next) {
    char* record = &bytes[at];
    const bool cover = at == 0;
    uint32_t length;
    std::memcpy(&length, record + 4, 4);
    next = at + length;
    // Past magic and size; the picture's flags and size stay as they were.
    const size_t kept[] = {cover ? offsetof(CalendarHeader, CoverPicture) : offsetof(MonthPage, Picture),
                           cover ? offsetof(CalendarHeader, CoverPictureDataSize) : offsetof(MonthPage, PictureDataSize),
                           cover ? offsetof(CalendarHeader, CoverPictureShowPicture) : offsetof(MonthPage, PictureShowPicture)};
    const std::string original(record, cover ? kHeaderSize : kMonthPageSize);
    for (size_t word = 8; word + 4 <= original.size(); word += 4) std::memcpy(record + word, &value, 4);
    for (size_t field : kept) std::memcpy(record + field, original.data() + field, 4);
  }
  WriteBytes(path, bytes);
}

// An sRGB profile as files embed it.
std::string SrgbProfile() {
  cmsHPROFILE srgb = cmsCreate_sRGBProfile();
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(srgb, nullptr, &size);
  std::string icc(size, '\0');
  cmsSaveProfileToMem(srgb, &icc[0], &size);
  cmsCloseProfile(srgb);
  return icc;
}

// EXIF data whose first directory turns the picture (orientation 6), in
// the big-endian byte order cameras often write.
std::string Exif() {
  return std::string("Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0", 32);
}

// A small colour JPEG as a phone writes it: EXIF with the orientation in
// APP1, and the colour profile in APP2, after its start of image.
std::string PhoneJpeg() {
  const auto marker = [](int type, const std::string& data) {
    return Bytes({0xFF, type, int(data.size() + 2) >> 8, int(data.size() + 2) & 255}) + data;
  };
  std::string jpeg(reinterpret_cast<const char*>(kColourJpeg), sizeof kColourJpeg);
  return jpeg.insert(2, marker(0xE1, Exif()) + marker(0xE2, std::string("ICC_PROFILE\0\1\1", 14) + SrgbProfile()));
}

// A PNG with a colour profile (iCCP) and EXIF (eXIf) before its data.
std::string ProfiledPng() {
  std::string png = Png(3, 3, 8, 6, 12, "");
  const std::string chunks =
      PngChunk("iCCP", std::string("sRGB\0\0", 6) + Zlib(SrgbProfile())) + PngChunk("eXIf", Exif().substr(6));
  return png.insert(33, chunks);  // after the signature and IHDR
}

void WriteImageSeeds(const std::string& folder) {
  WriteBytes(folder + "/phone.jpg", PhoneJpeg());
  WriteBytes(folder + "/profiled.png", ProfiledPng());
  WriteBytes(folder + "/grey.jpg", std::string(reinterpret_cast<const char*>(kGreyJpeg), sizeof kGreyJpeg));

  for (int bits : {1, 4, 8, 24}) {
    BlockHandle dib = SmallPicture(7, 5, bits);
    WriteBmpFile((folder + "/picture" + std::to_string(bits) + ".bmp").c_str(), dib);
    GlobalBlockFree(dib);
  }
  // Run-length coded (every code: runs, indexes as they are, a move, the
  // row's and the picture's ends) and OS/2 1.x files.
  std::vector<uint32_t> colours;
  for (uint32_t i = 0; i < 16; ++i) colours.push_back(0x110D07 * i);
  WriteBytes(folder + "/rle8.bmp", Bmp(7, 4, 8, colours, Bytes({3, 5, 0, 3, 1, 2, 3, 0, 0, 0, 0, 2, 2, 1, 9, 7, 0, 1}), 1));
  WriteBytes(folder + "/rle4.bmp", Bmp(7, 4, 4, colours, Bytes({3, 0x12, 0, 5, 0x34, 0x56, 0x70, 0, 0, 0, 0, 2, 1, 1, 2,
                                                                0xAB, 0, 0, 9, 0xCD, 0, 1}), 2));
  WriteBytes(folder + "/os2-4.bmp", Os2Bmp(5, 3, 4, {0x102030, 0xFF0000, 0x00FF00}, Bytes({0x21, 0x01, 0x20, 0, 0x00,
                                                                                         0x11, 0x20, 0, 0x12, 0x10,
                                                                                         0x00, 0})));
  std::string bgr;
  for (int i = 0; i < 2 * 12; ++i) bgr += static_cast<char>(i * 13);  // two rows of three pixels, padded
  WriteBytes(folder + "/os2-24.bmp", Os2Bmp(3, 2, 24, {}, bgr));
  WriteBytes(folder + "/palette.gif", Gif());

  std::string end(1, 0x0C);
  for (int i = 0; i < 256; ++i) end += {static_cast<char>(i), static_cast<char>(i * 3), static_cast<char>(255 - i)};
  WriteBytes(folder + "/palette.pcx", Pcx(8, 1, 4, std::string("\xC5\x07\x01\x02\xC6\xC3", 6) + end));
  WriteBytes(folder + "/planes.pcx", Pcx(1, 4, 2, std::string("\xD8\xA0", 2)));
  WriteBytes(folder + "/rgb.pcx", Pcx(8, 3, 4, std::string("\xE4\x40", 2)));

  std::string map;
  for (int i = 0; i < 4; ++i) map += {static_cast<char>(i * 60), static_cast<char>(255 - i * 60), static_cast<char>(i)};
  WriteBytes(folder + "/mapped.tga",
             Tga(1, 9, 4, 8, 0x20, map + std::string("\x85\x01\x05\x00\x01\x02\x03\x00\x01", 9)));
  std::string pixels;
  for (int i = 0; i < 12; ++i)
    pixels += {static_cast<char>(i * 20), static_cast<char>(i), static_cast<char>(200 - i), static_cast<char>(i * 21)};
  WriteBytes(folder + "/rgba.tga", Tga(0, 2, 0, 32, 8, pixels));

  std::string palette;
  for (int i = 0; i < 16; ++i) palette += {static_cast<char>(i * 16), static_cast<char>(i), static_cast<char>(255 - i)};
  WriteBytes(folder + "/palette.png", Png(5, 4, 4, 3, 3, palette));
  WriteBytes(folder + "/grey.png", Png(9, 3, 2, 0, 3, ""));
  WriteBytes(folder + "/rgba.png", Png(3, 3, 8, 6, 12, ""));

  // Large headers over a few bytes of data: 6,000 x 4,000 pixels claimed.
  std::string bigPng = Png(3, 3, 8, 6, 12, "");
  bigPng.replace(16, 8, Be32(6000) + Be32(4000));
  WriteBytes(folder + "/big-header.png", bigPng);
  std::string bmp = "BM" + Le32(0) + Le32(0) + Le32(54) + Le32(40) + Le32(6000) + Le32(4000) + Le16(1) + Le16(24);
  WriteBytes(folder + "/big-header.bmp", bmp + std::string(24, '\0') + std::string(64, '\x55'));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_fuzz_seeds FOLDER\n");
    return 2;
  }
  std::string root = argv[1];
  for (const char* sub :
       {"", "/calendar-seeds", "/calendar-work", "/text-seeds", "/text-work", "/image-seeds", "/image-work",
        "/render-seeds", "/render-work"})
    mkdir((root + sub).c_str(), 0777);
  Settings.ImageCompression = 1;
  SaveSeed(root + "/calendar-seeds/plain.CLN", false, {});
  SaveSeed(root + "/calendar-seeds/pictures.CLN", true, {0, 11});
  SaveSeed(root + "/calendar-seeds/march.CLN", false, {2});
  SaveStreamSeeds(root + "/calendar-seeds");
  SaveSeed(root + "/render-seeds/pictures.CLN", true, {0, 5, 11});
  for (uint32_t value : {0x80000000u, 0x7FFFFFFFu, 0xFFFFFFFFu, 100000u})
    SaveExtremeSeed(root + "/render-seeds/extreme-" + std::to_string(value) + ".CLN", value);

  std::FILE* f = std::fopen((root + "/text-seeds/QUERNL.INI").c_str(), "wb");
  WriteSettings(f, {"C:\\My Calendars\\2026.CLN", "D:\\old.CLN"}, std::time(nullptr));
  std::fclose(f);
  WriteBytes(root + "/text-seeds/abbreviated.INI", "Month = Xyz\nCap=1\nDateFontSize=   =  42pt\n\n=x\n");
  WriteBytes(root + "/text-seeds/General.CDF", "; holidays\nJAN01 New Year\n  jan05 indented\nDEC25 Christmas\r\nFEB29 Leap\n");
  // Lines longer than either reader takes at once, in a file of tens of kilobytes.
  std::string longLines = "[Quernal]\nCoverTitle = " + std::string(1500, 'T') + "\n";
  for (int i = 0; i < 200; ++i)
    longLines += "JAN" + std::to_string(10 + i % 20) + " " + std::string(60 + i % 300, 'e') + "\n";
  WriteBytes(root + "/text-seeds/long.CDF", longLines);
  WriteImageSeeds(root + "/image-seeds");
  return 0;
}
