#include "cli/commands.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "base/replace_file.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "cli/locale_names.h"
#include "render/picture_box.h"
#include "cli/pdf_boxes.h"
#include "cli/pdf_output_intent.h"
#include "config/settings_file.h"
#include "print/booklet.h"
#include "render/cairo_canvas.h"
#include "render/ops_canvas.h"
#include "render/page_renderer.h"

namespace {

constexpr Colour kWindowColour = 0xF0F0F0;  // round the page in the screen view

constexpr double kPointsPerMm = 72 / 25.4;


// Crop marks: hairlines on the lines of the trimmed page's edges, beginning
// 2 mm outside the bleed so that none is printed on the bleed and a cut a
// little off the line does not catch one. They stand in a slug round the
// bleed, which a bleed of 0 needs as much as any.
constexpr double kMarkGapMm = 2, kMarkLengthMm = 5, kMarkWidthPoints = 0.25;
constexpr double kMostBleedMm = 20;

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
  // A PDF page of a paper is that paper's exact size, the pixels stretched to
  // it by a hair; otherwise a pixel is 1/dpi inch.
  double pointsPerPixelX = 0, pointsPerPixelY = 0;
  double bleedMm = 0;
  bool cropMarks = false;
  int jpegQuality = 92;  // of the pictures in a PDF; 0: lossless
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

// What goes on a side: a page with the halves asked for, or a booklet
// side's two halves of two pages.
struct Half {
  int page;
  bool upper, lower;
};
std::vector<Half> HalvesOf(const RenderJob& job, const Side& side) {
  if (side.lowerPage < 0) return {{side.page, job.upper, job.lower}};
  return {{side.page, true, false}, {side.lowerPage, false, true}};
}

void DrawPage(Canvas& canvas, const RenderJob& job, const Side& side, bool background) {
  if (background)
    canvas.FillRect({0, 0, job.SurfaceWidth(), job.SurfaceHeight()}, job.screen ? kWindowColour : 0xFFFFFF);
  for (const Half& half : HalvesOf(job, side))
    DrawCalendarPage(canvas, job.PageRect(), job.document, half.page, !job.screen, half.upper, half.lower);
}

constexpr char kPart[] = ".part";  // a file being written, renamed when done (see Written)

// Names the file the user asked for, also while its ".part" is being written.
bool Failed(std::string path, const char* what) {
  const size_t n = sizeof kPart - 1;
  if (path.size() > n && path.compare(path.size() - n, n, kPart) == 0) path.resize(path.size() - n);
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

// A PDF page in points: the trimmed page, the bleed round it, and round that
// the slug where crop marks stand.
struct PdfSheet {
  double trimW, trimH, bleed, slug;
  double Edge() const { return bleed + slug; }  // from the sheet's edge to the trim
  double Width() const { return trimW + 2 * Edge(); }
  double Height() const { return trimH + 2 * Edge(); }
  PdfBox Trim() const { return {Edge(), Edge(), Edge() + trimW, Edge() + trimH}; }
  PdfBox Bleed() const { return {slug, slug, Width() - slug, Height() - slug}; }
  bool Printed() const { return bleed > 0 || slug > 0; }
};

PdfSheet SheetOf(const RenderJob& job) {
  const double slug = job.cropMarks ? (kMarkGapMm + kMarkLengthMm) * kPointsPerMm : 0;
  return {job.SurfaceWidth() * job.pointsPerPixelX, job.SurfaceHeight() * job.pointsPerPixelY,
          job.bleedMm * kPointsPerMm, slug};
}

// The backgrounds (and a bleeding cover picture) continued into the bleed, in
// the page's pixels with the trim at (0, 0); cut exactly at the bleed's edge.
void DrawBleed(cairo_t* cr, const RenderJob& job, const Side& side, const PdfSheet& sheet) {
  const double bleedX = sheet.bleed / job.pointsPerPixelX, bleedY = sheet.bleed / job.pointsPerPixelY;
  cairo_save(cr);
  cairo_rectangle(cr, -bleedX, -bleedY, job.width + 2 * bleedX, job.height + 2 * bleedY);
  cairo_clip(cr);
  {
    CairoCanvas canvas(cr);
    const int32_t pixels = static_cast<int32_t>(std::ceil(std::max(bleedX, bleedY)));
    for (const Half& half : HalvesOf(job, side))
      DrawPageBleed(canvas, job.PageRect(), job.document, half.page, half.upper, half.lower, pixels);
  }
  cairo_restore(cr);
}

// Two hairlines at each corner of the trim, in the slug, never inside the
// trim or the bleed.
void DrawCropMarks(cairo_t* cr, const RenderJob& job, const PdfSheet& sheet) {
  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_scale(cr, 1 / job.pointsPerPixelX, 1 / job.pointsPerPixelY);  // in points
  cairo_set_source_rgb(cr, 0, 0, 0);
  cairo_set_line_width(cr, kMarkWidthPoints);
  const double from = sheet.bleed + kMarkGapMm * kPointsPerMm, to = from + kMarkLengthMm * kPointsPerMm;
  const PdfBox trim = sheet.Trim();
  for (double x : {trim.left, trim.right}) {
    for (double y : {trim.bottom, trim.top}) {
      const double outX = x == trim.left ? -1 : 1, outY = y == trim.bottom ? -1 : 1;
      cairo_move_to(cr, x + outX * from, y);
      cairo_line_to(cr, x + outX * to, y);
      cairo_move_to(cr, x, y + outY * from);
      cairo_line_to(cr, x, y + outY * to);
    }
  }
  cairo_stroke(cr);
  cairo_restore(cr);
}

// Every page of the job into one PDF; with a bleed or crop marks, a page
// grown round its trim, whose TrimBox and BleedBox say where.
bool RenderPdf(const RenderJob& job, const std::string& path, ProgressLine& progress) {
  const PdfSheet sheet = SheetOf(job);
  cairo_surface_t* surface = cairo_pdf_surface_create(path.c_str(), sheet.Width(), sheet.Height());
  // In the page's pixels, as ScaleToPixels but to the sheet's own scale.
  cairo_surface_set_device_scale(surface, job.pointsPerPixelX, job.pointsPerPixelY);
  cairo_t* cr = cairo_create(surface);
  for (size_t i = 0; i < job.sides.size(); ++i) {
    cairo_save(cr);
    cairo_translate(cr, sheet.Edge() / job.pointsPerPixelX, sheet.Edge() / job.pointsPerPixelY);
    if (sheet.bleed > 0) DrawBleed(cr, job, job.sides[i], sheet);
    {
      CairoCanvas canvas(cr);
      canvas.SetPictureJpegQuality(job.jpegQuality);
      DrawPage(canvas, job, job.sides[i], true);
    }
    cairo_restore(cr);
    if (job.cropMarks) DrawCropMarks(cr, job, sheet);
    cairo_show_page(cr);
    progress.Show("rendering page", static_cast<int>(i + 1), static_cast<int>(job.sides.size()));
  }
  cairo_destroy(cr);
  cairo_surface_finish(surface);
  bool ok = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
  cairo_surface_destroy(surface);
  if (!ok) return Failed(path, "cannot be written");
  std::string problem;
  if (sheet.Printed() && !SetPageBoxes(path, sheet.Trim(), sheet.Bleed(), &problem))
    return Failed(path, ("its page boxes cannot be set: it " + problem).c_str());
  if (!AddSrgbOutputIntent(path, &problem))
    return Failed(path, ("its colours cannot be marked as sRGB: it " + problem).c_str());
  return true;
}

// Every file is written beside its name and renamed over it once complete,
// so a render that fails never leaves half a file where an earlier one stood.
bool Written(bool ok, const std::string& temporary, const std::string& path) {
  if (ok && std::rename(temporary.c_str(), path.c_str()) == 0) return true;
  std::remove(temporary.c_str());
  return ok ? Failed(path, "cannot be written") : false;
}

// An output that is not a regular file (a device, a FIFO, a folder) is
// never replaced, nor is a write-protected one.
bool MayWrite(const std::string& path) {
  const WriteProblem problem = replace_file::CheckTarget(path);
  return problem == WriteProblem::kNone || Failed(path, WriteProblemText(problem));
}

// A line on stderr for each page whose picture prints below the resolution
// that prints sharp, on the page the job draws.
void WarnOfBlurryPictures(const RenderJob& job) {
  std::vector<int> pages;
  for (const Side& side : job.sides)
    for (int page : {side.page, side.lowerPage})
      if (page >= 0) pages.push_back(page);
  for (const PrintedPicture& p :
       PrintedPictures(job.document, static_cast<double>(job.width) / job.dpi, static_cast<double>(job.height) / job.dpi, pages))
    if (p.ppi < kBlurryBelowPpi)
      std::fprintf(stderr, "quernal-cli: warning: the picture of the page \"%s\" prints at %d ppi and may print blurry "
                   "(%d ppi or more prints sharp)\n", PageName(p.page), p.ppi, kBlurryBelowPpi);
}

// Drawing needs memory the libraries below it take without checking
// (fontconfig crashes, GLib ends the process when theirs runs out): room
// for a page image and their own working sets must be there before the
// first page, or the command ends with the program's message.
bool HasRoomToDraw(const RenderJob& job) {
  constexpr size_t kLibraries = 64u << 20;
  const size_t page = static_cast<size_t>(job.SurfaceWidth()) * static_cast<size_t>(job.SurfaceHeight()) * 4;
  void* room = std::malloc(kLibraries + page);
  std::free(room);
  if (room) return true;
  std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
  return false;
}

bool Render(const RenderJob& job) {
  ProgressLine progress;
  for (size_t i = 0; i < (job.format == "pdf" ? 1 : job.sides.size()); ++i)
    if (!MayWrite(job.format == "pdf" || job.sides.size() == 1 ? job.out : NumberedPath(job.out, static_cast<int>(i + 1))))
      return false;
  if (job.format == "pdf") return Written(RenderPdf(job, job.out + kPart, progress), job.out + kPart, job.out);
  const std::function<bool(const RenderJob&, const Side&, const std::string&)> one =
      job.format == "png" ? RenderPng : job.format == "svg" ? RenderSvg : RenderOps;
  for (size_t i = 0; i < job.sides.size(); ++i) {
    const std::string path = job.sides.size() == 1 ? job.out : NumberedPath(job.out, static_cast<int>(i + 1));
    if (!Written(one(job, job.sides[i], path + kPart), path + kPart, path)) return false;
    progress.Show("rendering page", static_cast<int>(i + 1), static_cast<int>(job.sides.size()));
  }
  return true;
}

// Millimetres from `low` to `high` written as digits with an optional decimal
// part: "3", "3.5".
bool ParseMillimetres(const std::string& text, double low, double high, double* value) {
  const size_t digits = text.find_first_not_of("0123456789");
  const bool wellFormed = !text.empty() && digits > 0 && (digits == std::string::npos ||
                                         (text[digits] == '.' && digits + 1 < text.size() &&
                                          text.find_first_not_of("0123456789", digits + 1) == std::string::npos));
  if (!wellFormed) return false;
  const double v = std::strtod(text.c_str(), nullptr);
  if (v < low || v > high) return false;
  *value = v;
  return true;
}

// The print options of a PDF: an exit code, or -1 when all is well.
int PlanPrint(const Arguments& args, RenderJob* job) {
  if ((args.Has("--jpeg-quality") || args.Has("--lossless")) && job->format != "pdf")
    return Usage("--jpeg-quality and --lossless go with --format pdf");
  if (args.Has("--jpeg-quality") && args.Has("--lossless")) return Usage("--jpeg-quality and --lossless exclude each other");
  if (args.Has("--jpeg-quality") && !ParseInt(args.options.at("--jpeg-quality"), 1, 100, &job->jpegQuality))
    return Usage("--jpeg-quality takes 1 to 100");
  if (args.Has("--lossless")) job->jpegQuality = 0;
  if (!args.Has("--bleed") && !args.Has("--crop-marks")) return -1;
  if (job->format != "pdf") return Usage("--bleed and --crop-marks go with --format pdf");
  if (job->screen) return Usage("--bleed and --crop-marks are for print, not for the --screen view");
  job->cropMarks = args.Has("--crop-marks");
  if (args.Has("--bleed") && !ParseMillimetres(args.options.at("--bleed"), 0, kMostBleedMm, &job->bleedMm))
    return Usage("--bleed takes 0 to 20 millimetres, as 3 or 3.5");
  return -1;
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
  if (int status = PlanPrint(args, job); status >= 0) return status;
  if (args.Has("--dpi") && !ParseInt(args.options.at("--dpi"), 36, 2400, &job->dpi))
    return Usage("--dpi takes 36 to 2400");
  if (args.Has("--width") != args.Has("--height")) return Usage("--width and --height go together");
  if (args.Has("--width")) {
    if (args.Has("--paper")) return Usage("--paper and --width exclude each other");
    if (!ParseInt(args.options.at("--width"), 16, 20000, &job->width) ||
        !ParseInt(args.options.at("--height"), 16, 20000, &job->height))
      return Usage("--width and --height take 16 to 20000 pixels");
    job->pointsPerPixelX = job->pointsPerPixelY = 72.0 / job->dpi;
    return -1;
  }
  const Paper* p = PaperOption(args);
  if (!p) return 2;
  const Rect page = PaperPage(*p, job->dpi);
  job->width = page.right, job->height = page.bottom;
  job->pointsPerPixelX = p->widthInches * 72 / job->width;
  job->pointsPerPixelY = p->heightInches * 72 / job->height;
  return -1;
}

}  // namespace

int RenderCommand(const Arguments& args) {
  RenderJob job;
  int status = Plan(args, &job);
  if (status >= 0) return status;
  const bool fresh = args.Has("--new");
  if (fresh == (args.positional.size() == 1) || args.positional.size() > 1)
    return Usage("render takes one FILE.CLN or --new");
  if (!fresh && args.Has("--year")) return Usage("--year goes with --new");
  // Day and month names are settings, not part of the calendar: a file is
  // drawn with those of --config and --locale too.
  if (!fresh && args.Has("--config")) {
    SetConfigFolder(args.options.at("--config").c_str());
    LoadSettings();
  }
  if ((status = ApplyLocaleOption(args)) >= 0) return status;
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
  WarnOfBlurryPictures(job);
  bool ok = HasRoomToDraw(job) && Render(job);
  FreeCalendar(job.document);
  return ok ? 0 : 1;
}
