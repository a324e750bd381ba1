#include "cli/print_resolution.h"

#include <cmath>
#include <cstdlib>

#include "base/dib.h"
#include "render/ops_canvas.h"
#include "render/page_renderer.h"

namespace {

constexpr int kLayoutDpi = 300;

struct Paper {
  const char* name;
  double widthInches, heightInches;
};
const Paper kPapers[] = {{"a4", 210 / 25.4, 297 / 25.4}, {"letter", 8.5, 11}};

// Notes the size each picture is drawn at (an extended cover picture comes
// here too).
class PictureSizes : public OpsCanvas {
 public:
  void DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool printing) override {
    drawn.push_back({dib, width});
    OpsCanvas::DrawPicture(dib, width, height, printing);
  }
  struct Drawn {
    BlockHandle dib;
    int32_t width;
  };
  std::vector<Drawn> drawn;
};

}  // namespace

bool PaperInches(const std::string& name, double* width, double* height) {
  for (const Paper& p : kPapers) {
    if (name != p.name) continue;
    *width = p.widthInches, *height = p.heightInches;
    return true;
  }
  return false;
}

std::vector<PrintedPicture> PrintedPictures(CalendarDocument document, double widthInches, double heightInches,
                                            const std::vector<int>& pages) {
  std::vector<PrintedPicture> printed;
  const Rect page = {0, 0, static_cast<int32_t>(std::lround(widthInches * kLayoutDpi)),
                     static_cast<int32_t>(std::lround(heightInches * kLayoutDpi))};
  for (int index : pages) {
    if (index == 12) continue;
    PictureSizes canvas;
    DrawCalendarPage(canvas, page, document, index, true, true, true);
    for (const auto& d : canvas.drawn) {
      BlockLock lock(d.dib);
      if (!lock || d.width <= 0) continue;
      const int32_t pixels = lock.as<BitmapInfoHeader>()->biWidth;
      printed.push_back({index, static_cast<int>(static_cast<int64_t>(pixels) * kLayoutDpi / d.width)});
      break;  // a page shows one picture
    }
  }
  return printed;
}
