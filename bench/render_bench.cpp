// How long pages take to lay out and draw: the three kinds of page on the
// operations canvas (layout and drawing calls only); an A4 month page at
// 300 dpi with a 4000 x 3000 photograph on the Cairo canvas, beside one plain
// Cairo paint of an image of the page's size (what any page costs at least);
// its soft shadow alone, ring by ring and as the Cairo canvas draws it; and
// quernal-cli rendering a calendar of twelve such photographs and a cover
// to one PDF.
// The picture's resampling alone is also timed beside a copy of the box
// averaging it replaced.
//   quernal-render-bench [--runs N] [--png FILE] [--no-cli] [--resampler]
#include <cairo.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/dib.h"
#include "bench/old_box_shrink.h"
#include "bench/photo_calendar.h"
#include "calendar/calendar_file.h"
#include "calendar/file_progress.h"
#include "render/cairo_canvas.h"
#include "render/ops_canvas.h"
#include "render/page_renderer.h"
#include "render/primitives.h"
#include "pictures/resampler.h"

namespace {

using Clock = std::chrono::steady_clock;
double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

// Takes every call and does nothing: what is left is the layout itself.
class NullCanvas : public Canvas {
 public:
  void SetFont(const FontSpec&) override {}
  void SetPen(const PenSpec&) override {}
  void SetBrush(const BrushSpec&) override {}
  void SetTextColour(Colour) override {}
  void EndStage() override {}
  void FillRect(const Rect&, Colour) override { ++calls; }
  void FrameRect(const Rect&, Colour) override { ++calls; }
  void Rectangle(const Rect&) override { ++calls; }
  void RoundRect(const Rect&, int32_t, int32_t) override { ++calls; }
  int32_t DrawText(const std::string&, Rect* r, uint32_t) override { return ++calls, Height(*r); }
  void DrawPicture(BlockHandle, int32_t, int32_t, bool) override { ++calls; }
  void SaveState() override {}
  void RestoreState() override {}
  void SetOrigin(int32_t, int32_t) override {}
  void Clip(const Rect&) override {}
  void Unclip() override {}
  Colour ButtonShadowColour() override { return 0; }
  long calls = 0;
};

double LayoutOnly(CalendarDocument doc, int page, int runs) {
  NullCanvas canvas;
  auto t = Clock::now();
  for (int i = 0; i < runs; ++i) DrawCalendarPage(canvas, {0, 0, 2480, 3508}, doc, page, true, true, true);
  if (canvas.calls == 0) std::abort();
  return Seconds(t) / runs;
}

double OpsPage(CalendarDocument doc, int page, int runs) {
  const Rect a4{0, 0, 2480, 3508};
  auto t = Clock::now();
  size_t bytes = 0;
  for (int i = 0; i < runs; ++i) {
    OpsCanvas canvas;
    DrawCalendarPage(canvas, a4, doc, page, true, true, true);
    bytes += canvas.ops().size();
  }
  if (bytes == 0) std::abort();
  return Seconds(t) / runs;
}

// The Cairo canvas drawing soft shadows one RoundRect per ring, as canvases
// without a way of their own do.
class RingByRingCanvas : public CairoCanvas {
 public:
  using CairoCanvas::CairoCanvas;
  void DrawShadowRings(const ShadowRings& rings) override { Canvas::DrawShadowRings(rings); }
};

// The size the month page draws its picture at, from its drawing calls.
bool PictureSizeOnPage(CalendarDocument doc, const Rect& page, int* width, int* height) {
  OpsCanvas canvas;
  DrawCalendarPage(canvas, page, doc, 0, true, true, false);
  const std::string& ops = canvas.ops();
  const size_t at = ops.find("picture ");
  int left, top, right, bottom;
  if (at == std::string::npos || std::sscanf(ops.c_str() + at, "picture %d %d %d %d", &left, &top, &right, &bottom) != 4)
    return false;
  *width = right - left, *height = bottom - top;
  return true;
}

// Mean seconds of a soft shadow of the month page's size and softness on an
// A4 surface, drawn by `Kind` of canvas.
template <typename Kind>
double Shadow(cairo_surface_t* page, int width, int height, int softness, int runs) {
  double total = 0;
  for (int i = 0; i < runs; ++i) {
    cairo_t* cr = cairo_create(page);
    auto t = Clock::now();
    {
      Kind canvas(cr);
      canvas.SetOrigin(100, 100);
      DrawSoftShadow(canvas, 0, 0, width, height, 0x808080, 0xFFFFFF, softness);
    }
    cairo_surface_flush(page);
    total += Seconds(t);
    cairo_destroy(cr);
  }
  return total / runs;
}

double CpuSeconds() {
  timespec t;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return t.tv_sec + t.tv_nsec * 1e-9;
}

// The 4000 x 3000 photograph brought to the month page's picture box into
// Cairo pixels, by the resampler (as the Cairo canvas calls it) and by the
// box averaging it replaced, in turns so both see the same load: the
// fastest and the median of `runs` of each, in wall and CPU seconds.
void ResamplerAgainstBox(int width, int height, int runs) {
  BlockHandle photo = PhotoLikePicture(4000, 3000, 1);
  if (!photo || width < 1 || height < 1) return;
  std::vector<uint32_t> image(size_t(width) * height);
  const Rect part{0, 0, width, height};
  const uint8_t* dib = static_cast<const uint8_t*>(GlobalBlockLock(photo));
  auto resampler = [&] {
    ResampleDibRows(dib, width, height, part, false, [&](int32_t y, const uint8_t* row) {
      BgrRowToPixels(row, width, 0xFF000000, image.data() + size_t(y) * width);
    });
  };
  auto box = [&] { OldBoxShrinkDib(dib, width, height, part, reinterpret_cast<uint8_t*>(image.data()), width * 4, 0xFF000000); };
  std::vector<double> wall[2], cpu[2];
  for (int i = 0; i < runs; ++i)
    for (int k = 0; k < 2; ++k) {
      const double c = CpuSeconds();
      auto t = Clock::now();
      k == 0 ? resampler() : box();
      wall[k].push_back(Seconds(t)), cpu[k].push_back(CpuSeconds() - c);
    }
  GlobalBlockUnlock(photo);
  GlobalBlockFree(photo);
  std::printf("the 4000 x 3000 photograph to %d x %d, %d runs each in turns: fastest / median, wall and CPU\n", width,
              height, runs);
  const char* names[] = {"resampler", "box averaging it replaced"};
  for (int k = 0; k < 2; ++k) {
    std::sort(wall[k].begin(), wall[k].end()), std::sort(cpu[k].begin(), cpu[k].end());
    std::printf("  %-26s wall %6.1f / %6.1f ms   CPU %6.1f / %6.1f ms\n", names[k], wall[k][0] * 1e3,
                wall[k][runs / 2] * 1e3, cpu[k][0] * 1e3, cpu[k][runs / 2] * 1e3);
  }
}

// This program's folder, where quernal-cli is built too.
std::string OwnFolder() {
  char path[PATH_MAX];
  const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
  if (n <= 0) return ".";
  const std::string self(path, static_cast<size_t>(n));
  return self.substr(0, self.find_last_of('/'));
}

// Runs quernal-cli with `args` and waits; its seconds and peak memory, or false.
bool RunCli(const std::vector<std::string>& args, double* seconds, long* peakKiB) {
  const std::string cli = OwnFolder() + "/quernal-cli";
  std::vector<char*> argv{const_cast<char*>(cli.c_str())};
  for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  auto t = Clock::now();
  const pid_t child = fork();
  if (child < 0) return false;
  if (child == 0) {
    execv(cli.c_str(), argv.data());
    _exit(127);
  }
  int status;
  struct rusage usage;
  if (wait4(child, &status, 0, &usage) != child) return false;
  *seconds = Seconds(t);
  *peakKiB = usage.ru_maxrss;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// quernal-cli render --all --format pdf of twelve photographs and a cover.
void CliPdf() {
  const std::string calendar = "/tmp/quernal-render-bench.CLN", pdf = "/tmp/quernal-render-bench.pdf";
  CalendarDocument doc = PhotoCalendar(2026, 4000, 3000, 12, true);
  SilentProgress progress;
  const bool saved = doc && SaveCalendar(&progress, calendar.c_str(), doc) == 1;
  if (doc) FreeCalendar(doc);
  std::printf("quernal-cli render --all --format pdf, twelve 4000 x 3000 photographs and a cover\n");
  // The pictures as JPEGs (the default), then losslessly as before.
  for (const char* pictures : {"JPEG (quality 92)", "--lossless"}) {
    double seconds;
    long peakKiB;
    std::vector<std::string> args = {"render", calendar, "--all", "--format", "pdf", "-o", pdf};
    if (std::string(pictures) == "--lossless") args.push_back("--lossless");
    if (!saved || !RunCli(args, &seconds, &peakKiB)) {
      std::printf("quernal-cli render --all --format pdf: failed\n");
      return;
    }
    struct stat file;
    const double mib = stat(pdf.c_str(), &file) == 0 ? file.st_size / 1048576.0 : 0;
    std::printf("  %-18s %.2f s, peak memory %ld MiB, the PDF %.1f MiB\n", pictures, seconds, peakKiB / 1024, mib);
  }
  std::remove(calendar.c_str());
  std::remove(pdf.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 3;
  const char* png = nullptr;  // --png FILE keeps the month page, to look at
  bool cli = true;
  bool resamplerOnly = false;  // --resampler: only the resampler against the box averaging
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--no-cli") cli = false;
    if (arg == "--resampler") resamplerOnly = true;
    if (i + 1 >= argc) continue;
    if (arg == "--runs") runs = std::max(1, std::atoi(argv[++i]));
    else if (arg == "--png") png = argv[++i];
  }
  if (resamplerOnly) {
    CalendarDocument photo = PhotoCalendar(2026, 4000, 3000, 1, false);
    int w = 0, h = 0;
    if (!photo || !PictureSizeOnPage(photo, {0, 0, 2480, 3508}, &w, &h)) return 1;
    FreeCalendar(photo);
    ResamplerAgainstBox(w, h, std::max(runs, 9));
    return 0;
  }
  CalendarDocument doc = CreateCalendar(2026, 0);

  const int opsRuns = 2000;
  std::printf("A4 at 300 dpi, no picture, %d runs each    layout alone   operations canvas\n", opsRuns);
  const struct {
    const char* name;
    int page;
  } pages[] = {{"month page", 0}, {"year page", 12}, {"cover", 13}};
  for (const auto& p : pages)
    std::printf("  %-12s %30.1f us %16.1f us\n", p.name, LayoutOnly(doc, p.page, opsRuns) * 1e6,
                OpsPage(doc, p.page, opsRuns) * 1e6);
  FreeCalendar(doc);

  doc = PhotoCalendar(2026, 4000, 3000, 1, false);
  if (!doc) return 1;
  const int width = 2480, height = 3508;
  cairo_surface_t* page = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  auto cairoPage = [&](bool upper, bool lower) {
    double total = 0;
    for (int i = 0; i < runs; ++i) {
      cairo_t* cr = cairo_create(page);
      auto t = Clock::now();
      {
        CairoCanvas canvas(cr);
        DrawCalendarPage(canvas, {0, 0, width, height}, doc, 0, true, upper, lower);
      }
      cairo_surface_flush(page);
      total += Seconds(t);
      cairo_destroy(cr);
    }
    return total / runs;
  };
  cairoPage(true, true);  // fonts found, memory touched: what every later page finds
  const double month = cairoPage(true, true);
  if (png) cairo_surface_write_to_png(page, png);
  const double pictureHalf = cairoPage(true, false), calendarHalf = cairoPage(false, true);
  MonthPage jan;
  GetMonthPage(doc, 0, &jan);
  int pictureW = 0, pictureH = 0;
  PictureSizeOnPage(doc, {0, 0, width, height}, &pictureW, &pictureH);
  const int softness = jan.PictureShadowSoftness;
  // The soft shadow draws some hundred rings of the picture's size; a hard one draws one.
  jan.PictureShadowSoftness = 0;
  PutMonthPage(doc, 0, &jan);
  const double hardShadow = cairoPage(true, false);
  // The floor: an image already at the page's size, painted once. Its pixels
  // are written first, as a picture's are: the pages of an image never
  // written all read as one page of zeros and fault in on the first paint,
  // which is what the floor of earlier runs of this program measured (kept
  // beside it for comparison).
  auto paint = [&](cairo_surface_t* image) {
    double total = 0;
    for (int i = 0; i < runs; ++i) {
      cairo_t* cr = cairo_create(page);
      auto t = Clock::now();
      cairo_set_source_surface(cr, image, 0, 0);
      cairo_paint(cr);
      cairo_surface_flush(page);
      total += Seconds(t);
      cairo_destroy(cr);
    }
    return total / runs;
  };
  cairo_surface_t* unwritten = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  const double unwrittenFloor = paint(unwritten);
  cairo_surface_destroy(unwritten);
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  {
    cairo_t* cr = cairo_create(image);
    cairo_set_source_rgb(cr, 0.2, 0.4, 0.6);
    cairo_paint(cr);
    cairo_destroy(cr);
  }
  cairo_surface_flush(image);
  const double floor = paint(image);
  const double ringByRing = Shadow<RingByRingCanvas>(page, pictureW, pictureH, softness, runs);
  const double own = Shadow<CairoCanvas>(page, pictureW, pictureH, softness, runs);
  std::printf("Cairo canvas, A4 at 300 dpi (%d x %d), mean of %d runs\n", width, height, runs);
  std::printf("  month page with a 4000 x 3000 photograph %8.1f ms  (%.2f times the floor, %.2f times the old one)\n",
              month * 1e3, month / floor, month / unwrittenFloor);
  std::printf("    its picture half                        %8.1f ms\n", pictureHalf * 1e3);
  std::printf("    its picture half with a hard shadow     %8.1f ms\n", hardShadow * 1e3);
  std::printf("    its calendar half                       %8.1f ms\n", calendarHalf * 1e3);
  std::printf("  plain paint of a page-sized image        %8.1f ms  (the floor)\n", floor * 1e3);
  std::printf("    of one never written                    %8.1f ms  (the old floor)\n", unwrittenFloor * 1e3);
  std::printf("  its soft shadow alone (%d x %d at %d %%, %d rings)\n", pictureW, pictureH, softness,
              pictureW * softness / 100);
  std::printf("    ring by ring                            %8.2f ms\n", ringByRing * 1e3);
  std::printf("    as the Cairo canvas draws it            %8.2f ms  (%.1f times faster)\n", own * 1e3,
              ringByRing / own);
  ResamplerAgainstBox(pictureW, pictureH, std::max(runs, 9));
  cairo_surface_destroy(image);
  cairo_surface_destroy(page);
  FreeCalendar(doc);
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory: %ld MiB\n", usage.ru_maxrss / 1024);

  if (cli) CliPdf();
  return 0;
}
