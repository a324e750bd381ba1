// What saving and opening a calendar of photographs costs beside its floors,
// measured in one run: the first save against plain zlib compressing the same
// pictures one after the other, divided by the cores; a save after a caption
// changed against a plain copy of the file; opening against plain zlib
// inflating, divided by the cores.
//   quernal-file-bench [--width W] [--height H] [--pictures N] [--cover 0|1] [--level L] [--dir DIR]
#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <atomic>
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

// Processor time of all threads so far: beside the wall time it tells the
// work done from the waiting for cores that others use.
double CpuSeconds() {
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

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

struct Timed {
  double wall = 0, cpu = 0;
};

bool Save(CalendarDocument doc, const std::string& path, Timed* timed) {
  SilentProgress progress;
  auto t = Clock::now();
  const double cpu = CpuSeconds();
  bool ok = SaveCalendar(&progress, path.c_str(), doc) == 1;
  timed->wall = Seconds(t);
  timed->cpu = CpuSeconds() - cpu;
  if (!ok) std::fprintf(stderr, "SaveCalendar failed\n");
  return ok;
}

// Runs work(i) for every i below `count` on `cores` threads.
template <class Work>
void OnAllCores(size_t count, unsigned cores, Work work) {
  std::atomic<size_t> next{0};
  std::vector<std::thread> threads;
  for (unsigned c = 0; c < cores; ++c)
    threads.emplace_back([&] {
      for (size_t i; (i = next++) < count;) work(i);
    });
  for (std::thread& thread : threads) thread.join();
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

  const std::string path = dir + "/quernal-file-bench-" + std::to_string(getpid()) + ".CLN";
  const std::string copy = path + ".copy";
  Timed first, again, relevel, load;
  if (!Save(doc, path, &first)) return 1;
  const StreamCounts firstCounts = LastSaveStreamCounts();
  FreeCalendar(doc);
  std::FILE* f = std::fopen(path.c_str(), "rb");
  std::fseek(f, 0, SEEK_END);
  const double fileMb = std::ftell(f) / 1e6;
  std::fclose(f);

  auto t = Clock::now();
  const double cpu = CpuSeconds();
  SilentProgress progress;
  doc = LoadCalendar(&progress, path.c_str());
  load.wall = Seconds(t);
  load.cpu = CpuSeconds() - cpu;
  if (!doc) {
    std::fprintf(stderr, "LoadCalendar failed\n");
    return 1;
  }
  // Short and at the mercy of the disk's flushing: the best of three.
  StreamCounts againCounts;
  double plainCopy = 1e9, cachedCopy = 1e9;
  again.wall = 1e9;
  for (int round = 0; round < 3; ++round) {
    ChangeACaption(doc);
    Timed timed;
    if (!Save(doc, path, &timed)) return 1;
    if (timed.wall < again.wall) again = timed;
    againCounts = LastSaveStreamCounts();
    plainCopy = std::min(plainCopy, PlainCopy(path, copy, true));
    cachedCopy = std::min(cachedCopy, PlainCopy(path, copy, false));
  }
  Settings.ImageCompression = static_cast<uint32_t>(level == 1 ? 6 : 1);
  if (!Save(doc, path, &relevel)) return 1;
  const StreamCounts relevelCounts = LastSaveStreamCounts();
  std::remove(path.c_str());
  const long peak = PeakMemoryMiB();  // before the floors below hold every stream at once

  // The floors: plain zlib on the same pixels, one picture after the other on
  // one core; and the same spread over all cores, which is what the cores
  // others leave can do in this run.
  const std::vector<BlockHandle> loaded = Pictures(doc);
  std::vector<std::vector<uint8_t>> streams(loaded.size());
  double zlibCompress = 0, zlibUncompress = 0, checksum = 0;
  bool same = true;
  for (size_t i = 0; i < loaded.size(); ++i) {
    BlockLock lock(loaded[i]);
    const uLong size = GlobalBlockSize(loaded[i]);
    t = Clock::now();
    volatile uint64_t sum = ChecksumOf(lock.bytes(), size);
    (void)sum;
    checksum += Seconds(t);
    streams[i].resize(compressBound(size));
    uLongf length = streams[i].size();
    t = Clock::now();
    compress2(streams[i].data(), &length, lock.bytes(), size, level);
    zlibCompress += Seconds(t);
    streams[i].resize(length);
  }
  // Like the loader, zlib writes into fresh memory that stays: freed at once,
  // the next picture would find its pages mapped already and never pay for them.
  auto uncompressAll = [&](unsigned threads) {
    std::vector<uint8_t*> back(loaded.size());
    auto t = Clock::now();
    OnAllCores(loaded.size(), threads, [&](size_t i) {
      uLongf size = GlobalBlockSize(loaded[i]);
      back[i] = static_cast<uint8_t*>(std::calloc(size, 1));
      if (back[i]) uncompress(back[i], &size, streams[i].data(), streams[i].size());
    });
    const double seconds = Seconds(t);
    for (size_t i = 0; i < loaded.size(); ++i) {
      BlockLock lock(loaded[i]);
      same = same && back[i] && std::memcmp(back[i], lock.bytes(), GlobalBlockSize(loaded[i])) == 0;
      std::free(back[i]);
    }
    return seconds;
  };
  zlibUncompress = uncompressAll(1);
  const double zlibUncompressAll = uncompressAll(cores);
  std::vector<uint8_t*> data;
  for (BlockHandle b : loaded) data.push_back(static_cast<uint8_t*>(GlobalBlockLock(b)));
  t = Clock::now();
  OnAllCores(loaded.size(), cores, [&](size_t i) {
    const uLong size = GlobalBlockSize(loaded[i]);
    std::vector<uint8_t> out(compressBound(size));
    uLongf length = out.size();
    compress2(out.data(), &length, data[i], size, level);
  });
  const double zlibCompressAll = Seconds(t);
  for (BlockHandle b : loaded) GlobalBlockUnlock(b);
  FreeCalendar(doc);
  if (!same) {
    std::fprintf(stderr, "zlib round trip differs\n");
    return 1;
  }

  std::printf("file: %.1f MB (%.1f%% of the pixels)\n", fileMb, 100 * fileMb / mb);
  std::printf("checksums of all pictures, one core: %.3f s (%.0f MB/s)\n", checksum, mb / checksum);
  std::printf("%-34s %7s %7s  %s\n", "", "wall", "cpu", "streams");
  auto line = [](const char* what, const Timed& timed, const StreamCounts* counts) {
    std::printf("%-34s %6.2fs %6.2fs", what, timed.wall, timed.cpu);
    if (counts) std::printf("  %d copied, %d compressed", counts->copied, counts->compressed);
    std::printf("\n");
  };
  auto floor = [](const char* what, double seconds, double measured) {
    std::printf("  %-32s %6.2fs          ratio %.3f\n", what, seconds, measured / seconds);
  };
  line("first save", first, &firstCounts);
  floor("zlib compress, one core / cores", zlibCompress / cores, first.wall);
  floor("zlib compress on all cores", zlibCompressAll, first.wall);
  line("save after a caption changed *", again, &againCounts);
  floor("plain copy, read+write+fsync", plainCopy, again.wall);
  floor("plain copy, read+write", cachedCopy, again.wall);
  char relevelName[64];
  std::snprintf(relevelName, sizeof relevelName, "save at level %u", Settings.ImageCompression);
  line(relevelName, relevel, &relevelCounts);
  line("open", load, nullptr);
  floor("zlib uncompress, one core / cores", zlibUncompress / cores, load.wall);
  floor("zlib uncompress on all cores", zlibUncompressAll, load.wall);
  std::printf("(one core: zlib compress %.2f s, uncompress %.2f s)\n", zlibCompress, zlibUncompress);
  std::printf("* best of three, as is the plain copy\n");
  std::printf("peak memory of saving and opening: %ld MiB\n", peak);
  return 0;
}
