// Writes the starting corpus of the fuzzers into FOLDER/calendar-seeds and
// FOLDER/text-seeds, and makes the empty working corpora beside them.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "base/dib.h"
#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "config/settings_file.h"

namespace {

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

void WriteText(const std::string& path, const char* text) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  std::fputs(text, f);
  std::fclose(f);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_fuzz_seeds FOLDER\n");
    return 2;
  }
  std::string root = argv[1];
  for (const char* sub : {"", "/calendar-seeds", "/calendar-work", "/text-seeds", "/text-work"})
    mkdir((root + sub).c_str(), 0777);
  Settings.ImageCompression = 1;
  SaveSeed(root + "/calendar-seeds/plain.CLN", false, {});
  SaveSeed(root + "/calendar-seeds/pictures.CLN", true, {0, 11});
  SaveSeed(root + "/calendar-seeds/march.CLN", false, {2});

  std::FILE* f = std::fopen((root + "/text-seeds/QUERNL.INI").c_str(), "wb");
  WriteSettings(f, {"C:\\My Calendars\\2026.CLN", "D:\\old.CLN"}, std::time(nullptr));
  std::fclose(f);
  WriteText(root + "/text-seeds/abbreviated.INI", "Month = Xyz\nCap=1\nDateFontSize=   =  42pt\n\n=x\n");
  WriteText(root + "/text-seeds/General.CDF", "; holidays\nJAN01 New Year\n  jan05 indented\nDEC25 Christmas\r\nFEB29 Leap\n");
  return 0;
}
