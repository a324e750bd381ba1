// What importing a camera's photograph costs: the time and the peak memory
// of one import of 12, 48 and 108-megapixel JPEGs, beside ImageMagick's
// `convert -resize 4000x4000` of the same files; and the size of a calendar
// of twelve 48-megapixel photographs as the import keeps them, beside the
// same at the files' full size. Each measurement runs in a process of its
// own, so its peak memory is its own.
//   quernal-import-bench [--dir DIR] [--quick]
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "bench/photo_jpeg.h"
#include "calendar/calendar_file.h"
#include "calendar/calendar_model.h"
#include "config/settings.h"
#include "pictures/picture_import.h"

namespace {

struct Cost {
  double seconds = 0;
  long peakMiB = 0;
  bool ok = false;
};

class QuietProgress : public FileProgress {
 public:
  void Begin(const char*) override {}
  void Advance(int, int) override {}
  void End() override {}
  bool AskYesNo(const char*) override { return true; }
};

// Runs `work` in a child process: its wall time and peak resident memory.
template <class Work>
Cost InChild(Work work) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  int status = 0;
  struct rusage usage {};
  Cost cost;
  if (child > 0 && wait4(child, &status, 0, &usage) == child) {
    cost.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    cost.peakMiB = usage.ru_maxrss / 1024;
  }
  cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return cost;
}

long FileMiB(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 ? static_cast<long>(info.st_size >> 20) : -1;
}

// A calendar with the file imported on every month (`longest` 0: full
// size), saved to `out`.
bool SaveCalendarOf(const std::string& photo, int32_t longest, int months, const std::string& out) {
  ImportRequest request;
  request.longestSide = longest;
  request.formats = ImportFormats::kByContent;
  CalendarDocument document = CreateCalendar(2027, 0);
  for (int month = 0; month < months; ++month) {
    MonthPage page;
    GetMonthPage(document, month, &page);
    page.Picture = ImportPictureFile(photo.c_str(), request).dib;
    if (!page.Picture) return false;
    PutMonthPage(document, month, &page);
  }
  QuietProgress progress;
  const bool saved = SaveCalendar(&progress, out.c_str(), document) != 0;
  FreeCalendar(document);
  return saved;
}

}  // namespace

int main(int argc, char** argv) {
  std::string dir = "/tmp";
  bool quick = false;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--dir") && i + 1 < argc) dir = argv[++i];
    else if (!std::strcmp(argv[i], "--quick")) quick = true;
  }
  const bool magick = std::system("command -v convert >/dev/null 2>&1") == 0;
  std::printf("%-28s %10s %9s %10s %12s %9s %6s\n", "JPEG", "file MiB", "import s", "peak MiB", "convert s", "peak MiB",
              "ratio");
  const struct {
    const char* name;
    PhotoJpeg photo;
  } photos[] = {{"12 MP (4000 x 3000)", {4000, 3000}},
                {"48 MP (8000 x 6000)", {8000, 6000}},
                {"108 MP (12000 x 9000)", {12000, 9000}},
                {"100 MP progressive 4:4:4", {11547, 8660, 85, true, true}},
                {"200 MP (16330 x 12247)", {16330, 12247}}};
  for (const auto& p : photos) {
    if (quick && p.photo.width > 8000) continue;
    const std::string path = dir + "/quernal-import-bench.jpg";
    if (!WritePhotoJpeg(path, p.photo)) return 1;
    ImportRequest request;
    request.formats = ImportFormats::kByContent;
    const Cost ours = InChild([&] {
      const ImportedPicture picture = ImportPictureFile(path.c_str(), request);
      return picture.dib != 0;
    });
    Cost theirs;
    if (magick) {
      const std::string command = "convert '" + path + "' -resize 4000x4000 '" + dir + "/quernal-import-bench.ppm'";
      theirs = InChild([&] { return std::system((command + " 2>/dev/null").c_str()) == 0; });
      // The child's peak is the shell's; ImageMagick's own is its child's.
      struct rusage usage {};
      getrusage(RUSAGE_CHILDREN, &usage);
      theirs.peakMiB = usage.ru_maxrss / 1024;
    }
    // Debian's ImageMagick refuses pictures over its policy's limits
    // (128 megapixels, 16000 pixels a side) and caches on disk past 256 MiB.
    if (theirs.ok)
      std::printf("%-28s %10ld %9.2f %10ld %12.2f %9ld %6.2f%s\n", p.name, FileMiB(path), ours.seconds, ours.peakMiB,
                  theirs.seconds, theirs.peakMiB, ours.seconds / theirs.seconds, ours.ok ? "" : "  (import failed)");
    else
      std::printf("%-28s %10ld %9.2f %10ld %12s %9s %6s%s\n", p.name, FileMiB(path), ours.seconds, ours.peakMiB,
                  magick ? "refused" : "-", "", "", ours.ok ? "" : "  (import failed)");
    std::remove(path.c_str());
    std::remove((dir + "/quernal-import-bench.ppm").c_str());
  }

  // Twelve 48-megapixel photographs: reduced as the import keeps them, and
  // at full size (one month's stream, times twelve: twelve would pass what
  // a calendar file may hold, which the save now refuses).
  const std::string photo = dir + "/quernal-import-bench-48.jpg", cal = dir + "/quernal-import-bench.CLN";
  if (!WritePhotoJpeg(photo, {8000, 6000})) return 1;
  Settings.ImageCompression = 6;
  const Cost reduced = InChild([&] { return SaveCalendarOf(photo, kImportLongestSide, quick ? 2 : 12, cal); });
  const long reducedMiB = FileMiB(cal) * (quick ? 6 : 1);
  const Cost full = InChild([&] { return SaveCalendarOf(photo, 0, 1, cal); });
  const long fullMiB = FileMiB(cal) * 12;
  std::printf("\nCalendar of twelve 48 MP photographs (level 6): %ld MiB as imported (%.1f s to import and save), "
              "%ld MiB at full size (twelve times one month's) -> %.2f%s\n",
              reducedMiB, reduced.seconds, fullMiB, fullMiB > 0 ? static_cast<double>(reducedMiB) / fullMiB : 0.0,
              reduced.ok && full.ok ? "" : "  (a save failed)");
  std::remove(photo.c_str());
  std::remove(cal.c_str());
  return 0;
}
