#include "render/cairo_canvas.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "base/dib.h"
#include "base/text.h"
#include "pictures/resampler.h"
#include "render/cairo_jpeg.h"
#include "render/primitives.h"

namespace {

constexpr int32_t kDefaultFontHeight = 16;  // what a font of height 0 or less gets

// Cairo keeps coordinates in 24.8 fixed point, so anything beyond +-2^23
// would wrap around. Shapes are cut to this range first: far beyond any
// surface, so what lands on the surface stays the same.
constexpr double kCairoLimit = 1 << 22;
double Safe(double v) { return std::clamp(v, -kCairoLimit, kCairoLimit); }
// The rectangle x, y, w, h cut to the safe range.
void SafeRectangle(cairo_t* cr, double x, double y, double w, double h) {
  const double left = Safe(x), top = Safe(y);
  cairo_rectangle(cr, left, top, Safe(x + w) - left, Safe(y + h) - top);
}

Rect Normalized(Rect r) {
  if (r.left > r.right) std::swap(r.left, r.right);
  if (r.top > r.bottom) std::swap(r.top, r.bottom);
  return r;
}

// Text as the layout shows it: without the & prefixes unless they are to be
// shown as they stand, and on one line when asked.
std::string Displayed(const std::string& text, uint32_t format) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (!(format & kDtNoPrefix) && c == '&') {
      if (i + 1 < text.size() && text[i + 1] == '&') ++i;
      else continue;
    }
    if ((format & kDtSingleLine) && (c == '\r' || c == '\n')) c = ' ';
    if (!(format & kDtSingleLine) && c == '\r') continue;
    out += c;
  }
  return Cp1252ToUtf8(out);
}

cairo_surface_t* NewImage(int width, int height) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS) return surface;
  cairo_surface_destroy(surface);
  return nullptr;
}

// The part `part` (in output pixels) of the Dib resampled to width x height,
// into `image` (rows `stride` bytes apart) as Cairo's pixels with `alpha` in
// their top byte.
bool ResampleInto(const uint8_t* dib, int width, int height, const Rect& part, uint8_t* image, int stride,
                  uint32_t alpha) {
  const int partW = Width(part);
  return ResampleDibRows(dib, width, height, part, false, [&](int32_t y, const uint8_t* row) {
    BgrRowToPixels(row, partW, alpha, reinterpret_cast<uint32_t*>(image + size_t(y - part.top) * stride));
  });
}

// The same as a new image of the part's size.
cairo_surface_t* Resampled(const uint8_t* dib, int width, int height, const Rect& part) {
  cairo_surface_t* surface = NewImage(Width(part), Height(part));
  if (!surface) return nullptr;
  cairo_surface_flush(surface);
  if (!ResampleInto(dib, width, height, part, cairo_image_surface_get_data(surface),
                    cairo_image_surface_get_stride(surface), 0)) {
    cairo_surface_destroy(surface);
    return nullptr;
  }
  cairo_surface_mark_dirty(surface);
  return surface;
}

}  // namespace

CairoCanvas::CairoCanvas(cairo_t* cr) : cr_(cr), layout_(pango_cairo_create_layout(cr)) {
  // Positions that do not depend on the output's pixel grid, so PNG, PDF and
  // SVG lay text out alike.
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  pango_cairo_context_set_font_options(pango_layout_get_context(layout_), options);
  cairo_font_options_destroy(options);
}

CairoCanvas::~CairoCanvas() { g_object_unref(layout_); }

void CairoCanvas::EndStage() {
  State fresh;
  state_.font = fresh.font;
  state_.pen = fresh.pen;
  state_.brush = fresh.brush;
}

void CairoCanvas::SetColour(Colour c) { cairo_set_source_rgb(cr_, RedOf(c) / 255.0, GreenOf(c) / 255.0, BlueOf(c) / 255.0); }

void CairoCanvas::FillRect(const Rect& r, Colour colour) {
  if (Width(r) <= 0 || Height(r) <= 0) return;
  SetColour(colour);
  SafeRectangle(cr_, double(r.left) + state_.originX, double(r.top) + state_.originY, Width(r), Height(r));
  cairo_fill(cr_);
}

void CairoCanvas::FrameRect(const Rect& r, Colour colour) {
  if (Width(r) <= 0 || Height(r) <= 0) return;
  FillRect({r.left, r.top, r.right, r.top + 1}, colour);
  FillRect({r.left, r.bottom - 1, r.right, r.bottom}, colour);
  FillRect({r.left, r.top, r.left + 1, r.bottom}, colour);
  FillRect({r.right - 1, r.top, r.right, r.bottom}, colour);
}

namespace {

// Where a Rectangle or RoundRect goes on the surface: its box (without a pen
// a pixel smaller, as GDI fills it) and the radii of its corners.
struct Outline {
  double x, y, w, h, rx, ry;
};

// The outline of `given` at the origin; false when it is empty.
bool OutlineOf(const Rect& given, int32_t ellipseWidth, int32_t ellipseHeight, bool pen, double originX,
               double originY, Outline* o) {
  // As GDI: an inverted rectangle is drawn the right way round; the pen runs
  // inside the right and bottom edges; without a pen the shape is a pixel smaller.
  const Rect r = Normalized(given);
  const double left = double(r.left) + originX, top = double(r.top) + originY;
  o->x = Safe(left), o->y = Safe(top);
  o->w = Safe(left + Width(r)) - o->x - 1, o->h = Safe(top + Height(r)) - o->y - 1;
  if (o->w <= 0 || o->h <= 0) return false;
  if (pen) ++o->w, ++o->h;
  o->rx = std::min(std::abs(ellipseWidth) / 2.0, o->w / 2), o->ry = std::min(std::abs(ellipseHeight) / 2.0, o->h / 2);
  return true;
}

// Appends the outline moved `inset` inwards on every side as a sub-path.
void AddOutline(cairo_t* cr, const Outline& o, double inset) {
  const double px = o.x + inset, py = o.y + inset, pw = o.w - 2 * inset, ph = o.h - 2 * inset;
  const double rx = std::min(o.rx, pw / 2), ry = std::min(o.ry, ph / 2);
  if (rx <= 0 || ry <= 0) {
    cairo_rectangle(cr, px, py, pw, ph);
    return;
  }
  const double corners[4][3] = {{px + pw - rx, py + ry, -M_PI / 2}, {px + pw - rx, py + ph - ry, 0},
                                {px + rx, py + ph - ry, M_PI / 2}, {px + rx, py + ry, M_PI}};
  cairo_new_sub_path(cr);
  for (const auto& c : corners) {
    cairo_save(cr);
    cairo_translate(cr, c[0], c[1]);
    cairo_scale(cr, rx, ry);
    cairo_arc(cr, 0, 0, 1, c[2], c[2] + M_PI / 2);
    cairo_restore(cr);
  }
  cairo_close_path(cr);
}

}  // namespace

void CairoCanvas::Shape(const Rect& given, int32_t ellipseWidth, int32_t ellipseHeight) {
  const bool pen = !state_.pen.none;
  Outline o;
  if (!OutlineOf(given, ellipseWidth, ellipseHeight, pen, state_.originX, state_.originY, &o)) return;
  if (!state_.brush.none) {
    // Filled without antialiasing, as GDI fills: the edges stay on whole
    // pixels, and the many rings of a soft shadow fill fast.
    cairo_new_path(cr_);
    AddOutline(cr_, o, 0);
    SetColour(state_.brush.colour);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_NONE);
    cairo_fill(cr_);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
  }
  if (pen) {
    cairo_new_path(cr_);
    AddOutline(cr_, o, 0.5);
    SetColour(state_.pen.colour);
    cairo_set_line_width(cr_, 1);
    cairo_stroke(cr_);
  }
}

void CairoCanvas::DrawShadowRings(const ShadowRings& s) {
  // Vector output keeps the rings themselves: a viewer smooths the edges of
  // what it shows, and frames side by side would show seams.
  if (!PixelsAreDevicePixels(nullptr, nullptr)) return Canvas::DrawShadowRings(s);
  // Drawn ring by ring, the middle of a shadow is painted once per ring.
  // Here each ring paints only the pixels that are in it or in the next ring
  // but not in both (its outline and the next one's, filled by the even-odd
  // rule), and the last ring paints all of itself. A pixel then ends in the
  // colour of the last ring it lies in, as when each ring paints over the
  // last, nested or not; and each pixel is painted about once.
  state_.pen = kNullPen;
  const int32_t ellipse = Device(s.n);
  cairo_save(cr_);
  cairo_set_antialias(cr_, CAIRO_ANTIALIAS_NONE);
  cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_EVEN_ODD);
  Outline ring, next;
  bool have = OutlineOf(ShadowRingRect(s, s.first), ellipse, ellipse, false, state_.originX, state_.originY, &ring);
  for (Length i = s.first; i < s.n;) {
    const Length j = NextShadowRing(s, i);
    const bool haveNext =
        j < s.n && OutlineOf(ShadowRingRect(s, j), ellipse, ellipse, false, state_.originX, state_.originY, &next);
    if (have) {
      cairo_new_path(cr_);
      AddOutline(cr_, ring, 0);
      if (haveNext) AddOutline(cr_, next, 0);
      SetColour(ShadowRingColour(s, i));
      cairo_fill(cr_);
    }
    i = j, ring = next, have = haveNext;
  }
  cairo_restore(cr_);
}

bool CairoCanvas::VisibleBox(Rect* box) {
  double x1, y1, x2, y2;
  cairo_clip_extents(cr_, &x1, &y1, &x2, &y2);
  *box = {static_cast<int32_t>(std::floor(Safe(x1))) - state_.originX,
          static_cast<int32_t>(std::floor(Safe(y1))) - state_.originY,
          static_cast<int32_t>(std::ceil(Safe(x2))) - state_.originX,
          static_cast<int32_t>(std::ceil(Safe(y2))) - state_.originY};
  return true;
}

bool CairoCanvas::PixelsAreDevicePixels(int* shiftX, int* shiftY) {
  cairo_surface_t* target = cairo_get_target(cr_);
  if (cairo_surface_get_type(target) != CAIRO_SURFACE_TYPE_IMAGE) return false;
  cairo_matrix_t m;
  cairo_get_matrix(cr_, &m);
  double scaleX, scaleY, offsetX, offsetY;
  cairo_surface_get_device_scale(target, &scaleX, &scaleY);
  cairo_surface_get_device_offset(target, &offsetX, &offsetY);
  const double x = m.x0 + offsetX, y = m.y0 + offsetY;
  if (m.xx != 1 || m.yy != 1 || m.xy != 0 || m.yx != 0 || scaleX != 1 || scaleY != 1 || x != std::floor(x) ||
      y != std::floor(y) || std::abs(x) > kCairoLimit || std::abs(y) > kCairoLimit)
    return false;
  if (shiftX) *shiftX = static_cast<int>(x), *shiftY = static_cast<int>(y);
  return true;
}

bool CairoCanvas::ResampleOntoTarget(const uint8_t* dib, int width, int height, const Rect& part) {
  // Only where the result is the same as painting the resampled part: an image
  // of opaque pixels whose units are its pixels, and a clip that is one
  // rectangle holding the part.
  int shiftX, shiftY;
  if (!PixelsAreDevicePixels(&shiftX, &shiftY)) return false;
  cairo_surface_t* target = cairo_get_target(cr_);
  const cairo_format_t format = cairo_image_surface_get_format(target);
  if (format != CAIRO_FORMAT_RGB24 && format != CAIRO_FORMAT_ARGB32) return false;
  const Rect on = Offset(part, state_.originX, state_.originY);  // in user units
  cairo_rectangle_list_t* clip = cairo_copy_clip_rectangle_list(cr_);
  bool open = clip->status == CAIRO_STATUS_SUCCESS && clip->num_rectangles == 1;
  if (open) {
    const cairo_rectangle_t& r = clip->rectangles[0];
    open = r.x <= on.left && r.y <= on.top && r.x + r.width >= on.right && r.y + r.height >= on.bottom;
  }
  cairo_rectangle_list_destroy(clip);
  const Rect device = Offset(on, shiftX, shiftY);
  if (!open || device.left < 0 || device.top < 0 || device.right > cairo_image_surface_get_width(target) ||
      device.bottom > cairo_image_surface_get_height(target))
    return false;
  cairo_surface_flush(target);
  const int stride = cairo_image_surface_get_stride(target);
  uint8_t* corner = cairo_image_surface_get_data(target) + size_t(device.top) * stride + size_t(device.left) * 4;
  const bool drawn = ResampleInto(dib, width, height, part, corner, stride, 0xFF000000);
  cairo_surface_mark_dirty_rectangle(target, device.left, device.top, Width(device), Height(device));
  return drawn;
}

void CairoCanvas::Rectangle(const Rect& r) { Shape(r, 0, 0); }

void CairoCanvas::RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight) {
  Shape(r, ellipseWidth, ellipseHeight);
}

double CairoCanvas::PangoSizeFor(const FontSpec& font) {
  // A font's height here is its cell height (ascent plus descent), as for
  // CreateFontA; Pango sizes fonts by the em, so convert once per face.
  const std::string key = font.face + "/" + std::to_string(font.weight) + "/" + std::to_string(font.italic);
  auto found = cellToEm_.find(key);
  if (found == cellToEm_.end()) {
    PangoFontDescription* d = pango_font_description_from_string("");
    pango_font_description_set_family(d, font.face.c_str());
    pango_font_description_set_weight(d, static_cast<PangoWeight>(std::clamp(font.weight, 100, 1000)));
    pango_font_description_set_style(d, font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(d, 100 * PANGO_SCALE);
    PangoFontMetrics* m = pango_context_get_metrics(pango_layout_get_context(layout_), d, nullptr);
    double cell = (pango_font_metrics_get_ascent(m) + pango_font_metrics_get_descent(m)) / double(PANGO_SCALE);
    pango_font_metrics_unref(m);
    pango_font_description_free(d);
    found = cellToEm_.emplace(key, cell > 0 ? cell / 100 : 1.15).first;
  }
  const int32_t height = font.height > 0 ? font.height : kDefaultFontHeight;
  return height / found->second;
}

void CairoCanvas::Layout(const std::string& text, int32_t width, uint32_t format, int32_t* textW, int32_t* textH) {
  pango_cairo_update_layout(cr_, layout_);
  const FontSpec& f = state_.font;
  PangoFontDescription* d = pango_font_description_from_string("");
  pango_font_description_set_family(d, f.face.c_str());
  pango_font_description_set_weight(d, static_cast<PangoWeight>(std::clamp(f.weight, 100, 1000)));
  pango_font_description_set_style(d, f.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  pango_font_description_set_absolute_size(d, PangoSizeFor(f) * PANGO_SCALE);
  pango_layout_set_font_description(layout_, d);
  pango_font_description_free(d);
  const bool wrap = (format & kDtWordBreak) && !(format & kDtSingleLine);
  // Pango takes the width in 1/1024 pixel; wider than 2^21 pixels is as wide.
  const int32_t wrapWidth = std::min(width, INT32_MAX / PANGO_SCALE);
  pango_layout_set_width(layout_, wrap && width > 0 ? wrapWidth * PANGO_SCALE : -1);
  pango_layout_set_wrap(layout_, PANGO_WRAP_WORD);
  pango_layout_set_alignment(layout_, (format & kDtCenter)  ? PANGO_ALIGN_CENTER
                                      : (format & kDtRight) ? PANGO_ALIGN_RIGHT
                                                            : PANGO_ALIGN_LEFT);
  const std::string shown = Displayed(text, format);
  pango_layout_set_text(layout_, shown.c_str(), static_cast<int>(shown.size()));
  PangoRectangle logical;
  pango_layout_get_pixel_extents(layout_, nullptr, &logical);
  *textW = logical.width;
  *textH = shown.empty() ? 0 : logical.height;
}

int32_t CairoCanvas::DrawText(const std::string& text, Rect* r, uint32_t format) {
  int32_t textW, textH;
  Layout(text, Width(*r), format, &textW, &textH);
  const bool wrapped = pango_layout_get_width(layout_) > 0;
  if (format & kDtCalcRect) {
    r->right = r->left + (pango_layout_get_line_count(layout_) <= 1 ? textW : std::max(Width(*r), textW));
    r->bottom = r->top + textH;
    return textH;
  }
  double x = double(r->left) + state_.originX, y = double(r->top) + state_.originY;
  // A wrapped layout aligns its lines itself; otherwise place the block.
  if (!wrapped) {
    if (format & kDtCenter) x += (Width(*r) - textW) / 2.0;
    else if (format & kDtRight) x += Width(*r) - textW;
  }
  if (format & kDtSingleLine) {
    if (format & kDtVCenter) y += (Height(*r) - textH) / 2.0;
    else if (format & kDtBottom) y += Height(*r) - textH;
  }
  cairo_save(cr_);
  if (!(format & kDtNoClip)) {
    SafeRectangle(cr_, double(r->left) + state_.originX, double(r->top) + state_.originY, Width(*r), Height(*r));
    cairo_clip(cr_);
  }
  SetColour(state_.textColour);
  cairo_move_to(cr_, Safe(x), Safe(y));
  pango_cairo_show_layout(cr_, layout_);
  cairo_restore(cr_);
  return textH;
}

void CairoCanvas::Picture(BlockHandle dib, int32_t width, int32_t height, bool extended) {
  if (width <= 0 || height <= 0 || !DibBlockIsValid(dib)) return;
  // Only the part that lands on the surface (or inside the clip) is made: a
  // picture drawn far larger than the page costs no more than the page.
  double x1, y1, x2, y2;
  cairo_clip_extents(cr_, &x1, &y1, &x2, &y2);
  const double originX = state_.originX, originY = state_.originY;
  Rect part{static_cast<int32_t>(std::clamp(std::floor(x1 - originX), 0.0, double(width))),
            static_cast<int32_t>(std::clamp(std::floor(y1 - originY), 0.0, double(height))),
            static_cast<int32_t>(std::clamp(std::ceil(x2 - originX), 0.0, double(width))),
            static_cast<int32_t>(std::clamp(std::ceil(y2 - originY), 0.0, double(height)))};
  if (extended) {
    // A clip wholly beside the picture still needs the edge row or column
    // that is repeated over it.
    part.left = std::min(part.left, width - 1);
    part.top = std::min(part.top, height - 1);
    part.right = std::max(part.right, part.left + 1);
    part.bottom = std::max(part.bottom, part.top + 1);
  }
  if (Width(part) <= 0 || Height(part) <= 0) return;
  BlockLock lock(dib);
  const BitmapInfoHeader& h = *lock.as<BitmapInfoHeader>();
  // A page of pixels gets the picture resampled once to its drawn size. A
  // vector page (PDF, SVG) carries it at its own pixels where it has fewer
  // than its box at the page's resolution, so the file tells the resolution
  // it truly prints at (a print shop's preflight reads it there), and
  // reduced only where it has more. (A picture whose edges are repeated
  // over the bleed stays at its box's size: Cairo's PDFs do not repeat the
  // edges of a scaled picture.)
  const bool vector = cairo_surface_get_type(cairo_get_target(cr_)) != CAIRO_SURFACE_TYPE_IMAGE && !extended;
  const int32_t keptW = vector ? std::min(width, h.biWidth) : width;
  const int32_t keptH = vector ? std::min(height, std::abs(h.biHeight)) : height;
  if (keptW == width && keptH == height) {
    if (!extended && ResampleOntoTarget(lock.bytes(), width, height, part)) return;
  } else {
    part = {0, 0, keptW, keptH};
  }
  cairo_surface_t* scaled = Resampled(lock.bytes(), keptW, keptH, part);
  if (!scaled) return;
  if (jpegQuality_ > 0) AttachJpeg(scaled, jpegQuality_);
  cairo_save(cr_);
  cairo_translate(cr_, originX, originY);
  cairo_scale(cr_, double(width) / keptW, double(height) / keptH);
  cairo_set_source_surface(cr_, scaled, part.left, part.top);
  // Drawn larger than its pixels, the viewer interpolates it.
  if (keptW != width || keptH != height) cairo_pattern_set_filter(cairo_get_source(cr_), CAIRO_FILTER_GOOD);
  if (extended) {
    cairo_pattern_set_extend(cairo_get_source(cr_), CAIRO_EXTEND_PAD);
    cairo_paint(cr_);
  } else {
    cairo_rectangle(cr_, part.left, part.top, Width(part), Height(part));
    cairo_fill(cr_);
  }
  cairo_restore(cr_);
  cairo_surface_destroy(scaled);
}

void CairoCanvas::SaveState() {
  saved_.push_back(state_);
  cairo_save(cr_);
}

void CairoCanvas::RestoreState() {
  if (saved_.empty()) return;
  state_ = saved_.back();
  saved_.pop_back();
  cairo_restore(cr_);
}

void CairoCanvas::Clip(const Rect& r) {
  SafeRectangle(cr_, double(r.left) + state_.originX, double(r.top) + state_.originY, Width(r), Height(r));
  cairo_clip(cr_);
}

void CairoCanvas::Unclip() { cairo_reset_clip(cr_); }
