// A calendar file from anywhere, drawn: whatever loads is drawn page by page
// on the operations canvas at a printer's and a screen's size, and one page
// on a small Cairo surface. Drawing must finish quickly (the fuzzer's time
// limit per input) with no overflow and no allocation beyond the page.
#include <cairo.h>

#include <cstring>

#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "fuzz_support.h"
#include "render/cairo_canvas.h"
#include "render/ops_canvas.h"
#include "render/page_renderer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ResetSettings();
  std::strcpy(Settings.ApplicationPath, FuzzFolder().c_str());
  std::string path = WriteInput("input.CLN", data, size);
  SilentProgress yes(true);
  CalendarDocument document = LoadCalendar(&yes, path.c_str());
  if (!document) return 0;
  for (const Rect& page : {Rect{0, 0, 2480, 3508}, Rect{0, 0, 360, 460}}) {
    for (int index = 0; index < 14; ++index) {
      OpsCanvas ops;
      if (!DrawCalendarPage(ops, page, document, index, index % 2 == 0, true, true)) __builtin_trap();
    }
  }
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 120, 160);
  cairo_t* cr = cairo_create(surface);
  {
    CairoCanvas canvas(cr);
    DrawCalendarPage(canvas, {0, 0, 120, 160}, document, static_cast<int>(size % 14), true, true, true);
  }
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
  FreeCalendar(document);
  CheckNoBlocksLeft();
  return 0;
}
