#include "cli/commands.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "render/cairo_canvas.h"
#include "render/ops_canvas.h"
#include "print/booklet.h"
#include "render/page_renderer.h"

namespace {

constexpr Colour kWindowColour = 0xF0F0F0;  // round the page in the screen view

struct PageSize {
  const char* name;
  double widthInches, heightInches;
};
const PageSize kPapers[] = {{"a4", 210 / 25.4, 297 / 25.4}, {"letter", 8.5, 11}};

// One output page: a page of the calendar with the halves asked for, or a
// booklet side with one page's upper half over another's lower half.
struct Side {
  int page;
  int lowerPage = -1;  // a booklet side's lower half
};

struct RenderJob {
  CalendarDocument document = 0;
  std::vector<Side> sides;
  bool upper = true, lower = true, screen = false;
  int width = 0, height = 0, dpi = 300;  // the page in pixels
  std::string format, out;
  // The surface: the page, and a pixel of window round it in the screen view.
  int SurfaceWidth() const { return width + (screen ? 2 : 0); }
  int SurfaceHeight() const { return height + (screen ? 2 : 0); }
  Rect PageRect() const { return screen ? Rect{1, 1, width + 1, height + 1} : Rect{0, 0, width, height}; }
};

// "out.png" as the n-th of several files: "out-01.png".
std::string NumberedPath(const std::string& path, int n) {
  char number[8];
  std::snprintf(number, sizeof number, "-%02d", n);
  size_t slash = path.find_last_of('/');
  size_t dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return path + number;
  return path.substr(0, dot) + number + path.substr(dot);
}

void DrawPage(Canvas& canvas, const RenderJob& job, const Side& side, bool background) {
  if (background)
    canvas.FillRect({0, 0, job.SurfaceWidth(), job.SurfaceHeight()}, job.screen ? kWindowColour : 0xFFFFFF);
  if (side.lowerPage < 0) {
    DrawCalendarPage(canvas, job.PageRect(), job.document, side.page, !job.screen, job.upper, job.lower);
  } else {
    DrawCalendarPage(canvas, job.PageRect(), job.document, side.page, !job.screen, true, false);
    DrawCalendarPage(canvas, job.PageRect(), job.document, side.lowerPage, !job.screen, false, true);
  }
}

bool Failed(const std::string& path, const char* what) {
  std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), what);
  return false;
}

// Vector surfaces measure in points; draw in the page's pixels all the same.
// The scale goes under the user space, so fonts are sized in pixels too.
void ScaleToPixels(cairo_surface_t* surface, int dpi) { cairo_surface_set_device_scale(surface, 72.0 / dpi, 72.0 / dpi); }

bool RenderOps(const RenderJob& job, const Side& page, const std::string& path) {
  OpsCanvas canvas;
  DrawPage(canvas, job, page, false);
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return Failed(path, "cannot be written");
  bool ok = std::fwrite(canvas.ops().data(), 1, canvas.ops().size(), f) == canvas.ops().size();
  ok = std::fclose(f) == 0 && ok;
  return ok || Failed(path, "cannot be written");
}

bool RenderPng(const RenderJob& job, const Side& page, const std::string& path) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, job.SurfaceWidth(), job.SurfaceHeight());
  cairo_t* cr = cairo_create(surface);
  {
    CairoCanvas canvas(cr);
    DrawPage(canvas, job, page, true);
  }
  cairo_destroy(cr);
  bool ok = cairo_surface_write_to_png(surface, path.c_str()) == CAIRO_STATUS_SUCCESS;
  cairo_surface_destroy(surface);
  return ok || Failed(path, "cannot be written");
}

bool RenderSvg(const RenderJob& job, const Side& page, const std::string& path) {
  cairo_surface_t* surface =
      cairo_svg_surface_create(path.c_str(), job.SurfaceWidth() * 72.0 / job.dpi, job.SurfaceHeight() * 72.0 / job.dpi);
  ScaleToPixels(surface, job.dpi);
  cairo_t* cr = cairo_create(surface);
  {
    CairoCanvas canvas(cr);
    DrawPage(canvas, job, page, true);
  }
  cairo_destroy(cr);
  cairo_surface_finish(surface);
  bool ok = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
  cairo_surface_destroy(surface);
  return ok || Failed(path, "cannot be written");
}

// Every page of the job into one PDF.
bool RenderPdf(const RenderJob& job) {
  cairo_surface_t* surface = cairo_pdf_surface_create(job.out.c_str(), job.SurfaceWidth() * 72.0 / job.dpi,
                                                      job.SurfaceHeight() * 72.0 / job.dpi);
  ScaleToPixels(surface, job.dpi);
  cairo_t* cr = cairo_create(surface);
  for (const Side& side : job.sides) {
    {
      CairoCanvas canvas(cr);
      DrawPage(canvas, job, side, true);
    }
    cairo_show_page(cr);
  }
  cairo_destroy(cr);
  cairo_surface_finish(surface);
  bool ok = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
  cairo_surface_destroy(surface);
  return ok || Failed(job.out, "cannot be written");
}

bool Render(const RenderJob& job) {
  if (job.format == "pdf") return RenderPdf(job);
  const std::function<bool(const RenderJob&, const Side&, const std::string&)> one =
      job.format == "png" ? RenderPng : job.format == "svg" ? RenderSvg : RenderOps;
  if (job.sides.size() == 1) return one(job, job.sides[0], job.out);
  for (size_t i = 0; i < job.sides.size(); ++i)
    if (!one(job, job.sides[i], NumberedPath(job.out, static_cast<int>(i + 1)))) return false;
  return true;
}

// Fills in the job from the options; an exit code, or -1 when all is well.
int Plan(const Arguments& args, RenderJob* job) {
  if (!args.Has("--format") || !args.Has("-o")) return Usage("render needs --format and -o");
  job->format = args.options.at("--format");
  if (job->format != "png" && job->format != "pdf" && job->format != "svg" && job->format != "ops")
    return Usage("--format takes png, pdf, svg or ops");
  job->out = args.options.at("-o");
  if (args.Has("--all") + args.Has("--page") + args.Has("--booklet") > 1)
    return Usage("--page, --all and --booklet exclude each other");
  if (args.Has("--booklet") && args.Has("--halves")) return Usage("a booklet side has both halves");
  if (args.Has("--all")) {
    job->sides = {{kCoverPageIndex}, {kYearPageIndex}};
    for (int month = 0; month < 12; ++month) job->sides.push_back({month});
  } else if (args.Has("--page")) {
    int page;
    if (!ParseInt(args.options.at("--page"), 0, 13, &page)) return Usage("--page takes 0 to 11 for a month, 12, 13");
    job->sides = {{page}};
  } else if (args.Has("--booklet")) {
    // The fronts of the seven sheets, then their backs in the order of a
    // printer that lays its paper face down.
    for (const BookletSheet& sheet : BookletSheets) job->sides.push_back({sheet.frontUpper, sheet.frontLower});
    for (int j = 0; j < kBookletSheetCount; ++j) {
      const BookletSheet& sheet = BookletSheets[BackPassSheet(j, false)];
      job->sides.push_back({sheet.backUpper, sheet.backLower});
    }
  }
  if (args.Has("--halves")) {
    const std::string& halves = args.options.at("--halves");
    if (halves != "both" && halves != "upper" && halves != "lower") return Usage("--halves takes both, upper or lower");
    job->upper = halves != "lower";
    job->lower = halves != "upper";
  }
  job->screen = args.Has("--screen");
  if (args.Has("--dpi") && !ParseInt(args.options.at("--dpi"), 36, 2400, &job->dpi))
    return Usage("--dpi takes 36 to 2400");
  if (args.Has("--width") != args.Has("--height")) return Usage("--width and --height go together");
  if (args.Has("--width")) {
    if (args.Has("--paper")) return Usage("--paper and --width exclude each other");
    if (!ParseInt(args.options.at("--width"), 16, 20000, &job->width) ||
        !ParseInt(args.options.at("--height"), 16, 20000, &job->height))
      return Usage("--width and --height take 16 to 20000 pixels");
    return -1;
  }
  const std::string paper = args.Has("--paper") ? args.options.at("--paper") : "a4";
  for (const PageSize& p : kPapers) {
    if (paper != p.name) continue;
    job->width = static_cast<int>(std::lround(p.widthInches * job->dpi));
    job->height = static_cast<int>(std::lround(p.heightInches * job->dpi));
    return -1;
  }
  return Usage("--paper takes a4 or letter");
}

}  // namespace

int RenderCommand(const Arguments& args) {
  RenderJob job;
  int status = Plan(args, &job);
  if (status >= 0) return status;
  const bool fresh = args.Has("--new");
  if (fresh == (args.positional.size() == 1) || args.positional.size() > 1)
    return Usage("render takes one FILE.CLN or --new");
  if (!fresh && (args.Has("--year") || args.Has("--config"))) return Usage("--year and --config go with --new");
  if (fresh) {
    job.document = NewCalendar(args, &status);
  } else {
    SetApplicationPath(args);
    job.document = Load(args.positional[0]);
    status = 1;
  }
  if (!job.document) return status;
  if (job.sides.empty()) {
    // The page the calendar opens on.
    CalendarHeader header;
    GetHeader(job.document, &header);
    job.sides = {{header.CurrentPage >= 0 && header.CurrentPage <= 13 ? header.CurrentPage : 0}};
  }
  bool ok = Render(job);
  FreeCalendar(job.document);
  return ok ? 0 : 1;
}
