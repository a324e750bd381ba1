// How much the calendar file layer costs over zlib itself: a calendar with
// twelve photo-sized pictures is saved and loaded, and the same picture bytes
// are compressed and uncompressed with plain zlib at the same level.
//   quernal-file-bench [--width W] [--height H] [--pictures N] [--level L] [--dir DIR]
#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/dib.h"
#include "bench/photo_calendar.h"
#include "calendar/calendar_file.h"
#include "config/settings.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

long PeakMemoryMiB() {
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

}  // namespace

int main(int argc, char** argv) {
  int width = 4000, height = 3000, pictures = 12, level = 6;
  std::string dir = "/tmp";
  for (int i = 1; i + 1 < argc; i += 2) {
    std::string opt = argv[i];
    if (opt == "--width") width = std::atoi(argv[i + 1]);
    else if (opt == "--height") height = std::atoi(argv[i + 1]);
    else if (opt == "--pictures") pictures = std::atoi(argv[i + 1]);
    else if (opt == "--level") level = std::atoi(argv[i + 1]);
    else if (opt == "--dir") dir = argv[i + 1];
    else {
      std::fprintf(stderr, "unknown option %s\n", opt.c_str());
      return 2;
    }
  }
  if (pictures < 0 || pictures > 12) pictures = 12;
  Settings.ImageCompression = static_cast<uint32_t>(level);
  std::snprintf(Settings.ApplicationPath, sizeof Settings.ApplicationPath, "%s", dir.c_str());

  CalendarDocument doc = PhotoCalendar(2026, width, height, pictures, false);
  if (!doc) {
    std::fprintf(stderr, "out of memory\n");
    return 1;
  }
  double pictureBytes = 0;
  for (int m = 0; m < pictures; ++m) {
    MonthPage page;
    GetMonthPage(doc, m, &page);
    pictureBytes += GlobalBlockSize(page.Picture);
  }
  double mb = pictureBytes / 1e6;
  std::string path = dir + "/quernal-file-bench-" + std::to_string(getpid()) + ".CLN";
  std::printf("%d pictures of %d x %d, 24 bits: %.1f MB of pixels, level %d\n", pictures, width, height, mb, level);

  SilentProgress progress;
  auto t = Clock::now();
  if (!SaveCalendar(&progress, path.c_str(), doc)) {
    std::fprintf(stderr, "SaveCalendar failed\n");
    return 1;
  }
  double save = Seconds(t);
  FILE* f = std::fopen(path.c_str(), "rb");
  std::fseek(f, 0, SEEK_END);
  double fileMb = std::ftell(f) / 1e6;
  std::fclose(f);

  t = Clock::now();
  CalendarDocument loaded = LoadCalendar(&progress, path.c_str());
  double load = Seconds(t);
  if (!loaded) {
    std::fprintf(stderr, "LoadCalendar failed\n");
    return 1;
  }
  FreeCalendar(loaded);
  std::remove(path.c_str());

  // The same bytes through zlib alone, one picture at a time.
  std::vector<std::vector<uint8_t>> compressed(pictures);
  double zlibCompress = 0, zlibUncompress = 0;
  for (int m = 0; m < pictures; ++m) {
    MonthPage page;
    GetMonthPage(doc, m, &page);
    BlockLock lock(page.Picture);
    uLong size = GlobalBlockSize(page.Picture);
    uLongf bound = compressBound(size);
    compressed[m].resize(bound);
    t = Clock::now();
    compress2(compressed[m].data(), &bound, lock.bytes(), size, level);
    zlibCompress += Seconds(t);
    compressed[m].resize(bound);
    // Like the loader, zlib gets fresh memory to write into.
    uLongf backSize = size;
    t = Clock::now();
    uint8_t* back = static_cast<uint8_t*>(std::malloc(size));
    uncompress(back, &backSize, compressed[m].data(), compressed[m].size());
    zlibUncompress += Seconds(t);
    bool same = backSize == size && std::memcmp(back, lock.bytes(), size) == 0;
    std::free(back);
    if (!same) {
      std::fprintf(stderr, "zlib round trip differs\n");
      return 1;
    }
  }
  FreeCalendar(doc);

  std::printf("file: %.1f MB (%.1f%% of the pixels)\n", fileMb, 100 * fileMb / mb);
  std::printf("SaveCalendar   %7.2f s  %7.1f MB/s\n", save, mb / save);
  std::printf("zlib compress  %7.2f s  %7.1f MB/s\n", zlibCompress, mb / zlibCompress);
  std::printf("LoadCalendar   %7.2f s  %7.1f MB/s\n", load, mb / load);
  std::printf("zlib uncompress%7.2f s  %7.1f MB/s\n", zlibUncompress, mb / zlibUncompress);
  std::printf("save / zlib compress:   %.3f\n", save / zlibCompress);
  std::printf("load / zlib uncompress: %.3f\n", load / zlibUncompress);
  std::printf("peak memory: %ld MiB\n", PeakMemoryMiB());
  return 0;
}
