// How long pages take to lay out and draw: the three kinds of page on the
// operations canvas (layout and drawing calls only), and an A4 month page at
// 300 dpi with a 4000 x 3000 picture on the Cairo canvas, beside one plain
// Cairo paint of an image of the page's size (what any page costs at least).
//   quernal-render-bench [--runs N] [--png FILE]
#include <cairo.h>
#include <sys/resource.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/dib.h"
#include "render/cairo_canvas.h"
#include "render/ops_canvas.h"
#include "render/page_renderer.h"

namespace {

using Clock = std::chrono::steady_clock;
double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

BlockHandle Photo(int width, int height) {
  BlockHandle dib = DibCreate(width, height, 24);
  BlockLock lock(dib);
  uint8_t* bits = DibBits(lock.bytes());
  size_t stride = DibRowStride(width, 24);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      uint8_t* p = bits + y * stride + x * 3;
      p[0] = static_cast<uint8_t>(128 + 100 * std::sin(x * 0.003));
      p[1] = static_cast<uint8_t>(128 + 100 * std::cos(y * 0.002));
      p[2] = static_cast<uint8_t>((x + y) / 30);
    }
  return dib;
}

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

}  // namespace

int main(int argc, char** argv) {
  int runs = 3;
  const char* png = nullptr;  // --png FILE keeps the month page, to look at
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::string(argv[i]) == "--runs") runs = std::max(1, std::atoi(argv[i + 1]));
    if (std::string(argv[i]) == "--png") png = argv[i + 1];
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

  MonthPage jan;
  GetMonthPage(doc, 0, &jan);
  jan.Picture = Photo(4000, 3000);
  PutMonthPage(doc, 0, &jan);
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
    return total;
  };
  double month = cairoPage(true, true);
  if (png) cairo_surface_write_to_png(page, png);
  double pictureHalf = cairoPage(true, false), calendarHalf = cairoPage(false, true);
  // The soft shadow draws a hundred rings of the picture's size; a hard one draws one.
  GetMonthPage(doc, 0, &jan);
  jan.PictureShadowSoftness = 0;
  PutMonthPage(doc, 0, &jan);
  double hardShadow = cairoPage(true, false);
  // The floor: an image already at the page's size, painted once.
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  double floor = 0;
  for (int i = 0; i < runs; ++i) {
    cairo_t* cr = cairo_create(page);
    auto t = Clock::now();
    cairo_set_source_surface(cr, image, 0, 0);
    cairo_paint(cr);
    cairo_surface_flush(page);
    floor += Seconds(t);
    cairo_destroy(cr);
  }
  std::printf("Cairo canvas, A4 at 300 dpi (%d x %d), mean of %d runs\n", width, height, runs);
  std::printf("  month page with a 4000 x 3000 picture  %8.1f ms\n", month / runs * 1e3);
  std::printf("    its picture half                      %8.1f ms\n", pictureHalf / runs * 1e3);
  std::printf("    its picture half with a hard shadow   %8.1f ms\n", hardShadow / runs * 1e3);
  std::printf("    its calendar half                     %8.1f ms\n", calendarHalf / runs * 1e3);
  std::printf("  plain paint of a page-sized image      %8.1f ms  (the floor)\n", floor / runs * 1e3);
  cairo_surface_destroy(image);
  cairo_surface_destroy(page);
  FreeCalendar(doc);

  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory: %ld MiB\n", usage.ru_maxrss / 1024);
  return 0;
}
