// What saving and opening a calendar of photographs costs beside its floors,
// measured in one run: the first save against plain zlib compressing the same
// pictures one after the other, divided by the cores; a save after a caption
// changed against a plain copy of the file; opening against plain zlib
// inflating, divided by the cores.
//   quernal-file-bench [--width W] [--height H] [--pictures N] [--cover 0|1] [--level L] [--dir DIR]
#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "base/dib.h"
#include "bench/photo_calendar.h"
#include "calendar/calendar_file.h"
#include "calendar/picture_streams.h"
#include "config/settings.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

long PeakMemoryMiB() {
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

// The pictures of a calendar, the cover first, as the file holds them.
std::vector<BlockHandle> Pictures(CalendarDocument doc) {
  std::vector<BlockHandle> pictures;
  CalendarHeader header;
  GetHeader(doc, &header);
  if (header.CoverPicture) pictures.push_back(header.CoverPicture);
  for (int m = 0; m < 12; ++m) {
    MonthPage page;
    GetMonthPage(doc, m, &page);
    if (page.Picture) pictures.push_back(page.Picture);
  }
  return pictures;
}

// The whole file read and written to a new one, which reaches the disk as a
// saved calendar does; the floor of a save that compresses nothing.
double PlainCopy(const std::string& from, const std::string& to, bool sync) {
  auto t = Clock::now();
  std::FILE* in = std::fopen(from.c_str(), "rb");
  std::FILE* out = std::fopen(to.c_str(), "wb");
  if (!in || !out) return -1;
  std::vector<char> buffer(1 << 20);
  for (size_t n; (n = std::fread(buffer.data(), 1, buffer.size(), in)) > 0;) std::fwrite(buffer.data(), 1, n, out);
  std::fclose(in);
  std::fflush(out);
  if (sync) fsync(fileno(out));
  std::fclose(out);
  double seconds = Seconds(t);
  std::remove(to.c_str());
  return seconds;
}

// Changes January's caption the way the page editor does: a deep copy of the
// record, with a new picture block of the same pixels, put back in place.
void ChangeACaption(CalendarDocument doc) {
  MonthPage old, page;
  GetMonthPage(doc, 0, &old);
  page = old;
  page.Picture = DuplicateBlock(old.Picture);
  std::snprintf(page.LeftCaption, sizeof page.LeftCaption, "Changed");
  if (old.Picture) GlobalBlockFree(old.Picture);
  PutMonthPage(doc, 0, &page);
}

bool Save(CalendarDocument doc, const std::string& path, double* seconds) {
  SilentProgress progress;
  auto t = Clock::now();
  bool ok = SaveCalendar(&progress, path.c_str(), doc) == 1;
  *seconds = Seconds(t);
  if (!ok) std::fprintf(stderr, "SaveCalendar failed\n");
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  int width = 4000, height = 3000, pictures = 12, cover = 1, level = 6;
  std::string dir = "/tmp";
  for (int i = 1; i + 1 < argc; i += 2) {
    std::string opt = argv[i];
    if (opt == "--width") width = std::atoi(argv[i + 1]);
    else if (opt == "--height") height = std::atoi(argv[i + 1]);
    else if (opt == "--pictures") pictures = std::atoi(argv[i + 1]);
    else if (opt == "--cover") cover = std::atoi(argv[i + 1]);
    else if (opt == "--level") level = std::atoi(argv[i + 1]);
    else if (opt == "--dir") dir = argv[i + 1];
    else {
      std::fprintf(stderr, "unknown option %s\n", opt.c_str());
      return 2;
    }
  }
  if (pictures < 0 || pictures > 12) pictures = 12;
  level = level < 1 ? 1 : level > 9 ? 9 : level;
  Settings.ImageCompression = static_cast<uint32_t>(level);
  std::snprintf(Settings.ApplicationPath, sizeof Settings.ApplicationPath, "%s", dir.c_str());
  const unsigned cores = std::max(1u, std::thread::hardware_concurrency());

  CalendarDocument doc = PhotoCalendar(2026, width, height, pictures, cover != 0);
  if (!doc) {
    std::fprintf(stderr, "out of memory\n");
    return 1;
  }
  const std::vector<BlockHandle> blocks = Pictures(doc);
  double mb = 0;
  for (BlockHandle b : blocks) mb += GlobalBlockSize(b) / 1e6;
  std::printf("%zu pictures (%d months%s) of %d x %d, 24 bits: %.1f MB of pixels, level %d, %u cores\n",
              blocks.size(), pictures, cover ? " and the cover" : "", width, height, mb, level, cores);

  // Plain zlib on the same bytes, one picture after the other on one core.
  double zlibCompress = 0, zlibUncompress = 0, checksum = 0;
  for (BlockHandle b : blocks) {
    BlockLock lock(b);
    uLong size = GlobalBlockSize(b);
    auto t = Clock::now();
    volatile uint64_t sum = ChecksumOf(lock.bytes(), size);
    (void)sum;
    checksum += Seconds(t);
    std::vector<uint8_t> compressed(compressBound(size));
    uLongf length = compressed.size();
    t = Clock::now();
    compress2(compressed.data(), &length, lock.bytes(), size, level);
    zlibCompress += Seconds(t);
    // Like the loader, zlib gets fresh memory to write into.
    uLongf backSize = size;
    t = Clock::now();
    uint8_t* back = static_cast<uint8_t*>(std::malloc(size));
    uncompress(back, &backSize, compressed.data(), length);
    zlibUncompress += Seconds(t);
    bool same = backSize == size && std::memcmp(back, lock.bytes(), size) == 0;
    std::free(back);
    if (!same) {
      std::fprintf(stderr, "zlib round trip differs\n");
      return 1;
    }
  }

  const std::string path = dir + "/quernal-file-bench-" + std::to_string(getpid()) + ".CLN";
  const std::string copy = path + ".copy";
  double first, again, relevel, load;
  if (!Save(doc, path, &first)) return 1;
  StreamCounts firstCounts = LastSaveStreamCounts();
  FreeCalendar(doc);
  std::FILE* f = std::fopen(path.c_str(), "rb");
  std::fseek(f, 0, SEEK_END);
  double fileMb = std::ftell(f) / 1e6;
  std::fclose(f);
  std::printf("file: %.1f MB (%.1f%% of the pixels)\n", fileMb, 100 * fileMb / mb);

  auto t = Clock::now();
  SilentProgress progress;
  doc = LoadCalendar(&progress, path.c_str());
  load = Seconds(t);
  if (!doc) {
    std::fprintf(stderr, "LoadCalendar failed\n");
    return 1;
  }
  ChangeACaption(doc);
  if (!Save(doc, path, &again)) return 1;
  StreamCounts againCounts = LastSaveStreamCounts();
  const double plainCopy = PlainCopy(path, copy, true), cachedCopy = PlainCopy(path, copy, false);
  Settings.ImageCompression = static_cast<uint32_t>(level == 1 ? 6 : 1);
  if (!Save(doc, path, &relevel)) return 1;
  StreamCounts relevelCounts = LastSaveStreamCounts();
  FreeCalendar(doc);
  std::remove(path.c_str());

  std::printf("checksums of all pictures, one core: %.3f s (%.0f MB/s)\n", checksum, mb / checksum);
  std::printf("%-32s %7.2f s  (%d streams copied, %d compressed)\n", "first save", first, firstCounts.copied,
              firstCounts.compressed);
  std::printf("  %-30s %7.2f s  ratio %.3f\n", "zlib compress, one core / cores", zlibCompress / cores,
              first / (zlibCompress / cores));
  std::printf("%-32s %7.2f s  (%d streams copied, %d compressed)\n", "save after a caption changed", again,
              againCounts.copied, againCounts.compressed);
  std::printf("  %-30s %7.2f s  ratio %.3f\n", "plain copy, read+write+fsync", plainCopy, again / plainCopy);
  std::printf("  %-30s %7.2f s  (the copy left in the cache)\n", "plain copy, read+write", cachedCopy);
  std::printf("%-32s %7.2f s  (%d streams copied, %d compressed, level %u)\n", "save at another level", relevel,
              relevelCounts.copied, relevelCounts.compressed, Settings.ImageCompression);
  std::printf("%-32s %7.2f s\n", "open", load);
  std::printf("  %-30s %7.2f s  ratio %.3f\n", "zlib uncompress, one core / cores", zlibUncompress / cores,
              load / (zlibUncompress / cores));
  std::printf("peak memory: %ld MiB\n", PeakMemoryMiB());
  return 0;
}
