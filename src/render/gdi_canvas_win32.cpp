#include "render/gdi_canvas_win32.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/dib.h"
#include "pictures/resampler.h"
#include "render/primitives_win32.h"
#include "render/screen_picture_win32.h"

// The placement codes in the records go straight to DrawTextA.
static_assert(kDtLeft == DT_LEFT && kDtTop == DT_TOP && kDtCenter == DT_CENTER && kDtRight == DT_RIGHT &&
                  kDtVCenter == DT_VCENTER && kDtBottom == DT_BOTTOM && kDtWordBreak == DT_WORDBREAK &&
                  kDtSingleLine == DT_SINGLELINE && kDtExpandTabs == DT_EXPANDTABS && kDtNoClip == DT_NOCLIP &&
                  kDtCalcRect == DT_CALCRECT && kDtNoPrefix == DT_NOPREFIX,
              "the DrawText bits are Win32's");
static_assert(sizeof(Colour) == sizeof(COLORREF), "a Colour is a COLORREF");

namespace {

RECT ToRECT(const Rect& r) { return RECT{r.left, r.top, r.right, r.bottom}; }

bool SameFont(const FontSpec& a, const FontSpec& b) {
  return a.height == b.height && a.weight == b.weight && a.italic == b.italic && a.face == b.face;
}
}  // namespace

GdiCanvas::GdiCanvas(HDC dc, ScreenPictureCache* pictures) : dc_(dc), pictures_(pictures) {
  GetViewportOrgEx(dc_, &baseOrigin_);
}

GdiCanvas::~GdiCanvas() {
  EndStage();
  // A page that no longer shows the kept picture lets it go.
  if (pictures_ && !pictureKept_) pictures_->Drop();
}

bool GdiCanvas::Pinned(HGDIOBJ object) const {
  if (object == fonts_.selected || object == pens_.selected || object == brushes_.selected) return true;
  for (const Selection& s : saved_)
    if (object == s.font || object == s.pen || object == s.brush) return true;
  return false;
}

void GdiCanvas::Select(Kind& kind, HGDIOBJ object) {
  HGDIOBJ previous = SelectObject(dc_, object);
  if (!previous || previous == HGDI_ERROR) return;
  if (!kind.original) kind.original = previous;
  kind.selected = object;
}

// Keeps a kind's cache small: the least recently used object that nothing
// refers to goes, so a soft shadow's hundreds of brushes never pile up.
void GdiCanvas::MakeRoom(Kind& kind) {
  if (kind.made.size() < kCachePerKind) return;
  for (auto it = kind.made.begin(); it != kind.made.end(); ++it) {
    if (Pinned(it->object)) continue;
    DeleteObject(it->object);
    kind.made.erase(it);
    return;
  }
}

template <class Matches, class Make>
void GdiCanvas::SelectMade(Kind& kind, Matches matches, Make make) {
  auto found = std::find_if(kind.made.begin(), kind.made.end(), matches);
  if (found != kind.made.end()) {
    // Most recently used last.
    std::rotate(found, found + 1, kind.made.end());
    Select(kind, kind.made.back().object);
    return;
  }
  MakeRoom(kind);
  Made made = make();
  if (!made.object) return;
  kind.made.push_back(made);
  Select(kind, made.object);
}

void GdiCanvas::SetFont(const FontSpec& font) {
  SelectMade(
      fonts_, [&font](const Made& m) { return SameFont(m.font, font); },
      [&font]() {
        // A height of 0 or less means the system's default size here, where a
        // negative height would ask GDI for a character height instead.
        const int height = font.height > 0 ? font.height : 0;
        HFONT f = CreateFontA(height, 0, 0, 0, font.weight, static_cast<DWORD>(font.italic), 0, 0, DEFAULT_CHARSET,
                              0, 0, 4, 0, font.face.c_str());
        return Made{font, 0, f};
      });
}

void GdiCanvas::SetPen(const PenSpec& pen) {
  if (pen.none) {
    Select(pens_, GetStockObject(NULL_PEN));
    return;
  }
  const Colour c = pen.colour;
  SelectMade(
      pens_, [c](const Made& m) { return m.colour == c; },
      [c]() { return Made{{}, c, CreatePen(PS_SOLID, 1, c)}; });
}

void GdiCanvas::SetBrush(const BrushSpec& brush) {
  if (brush.none) {
    Select(brushes_, GetStockObject(NULL_BRUSH));
    return;
  }
  const Colour c = brush.colour;
  SelectMade(
      brushes_, [c](const Made& m) { return m.colour == c; },
      [c]() { return Made{{}, c, CreateSolidBrush(c)}; });
}

void GdiCanvas::SetTextColour(Colour colour) { SetTextColor(dc_, colour); }

void GdiCanvas::EndKind(Kind& kind) {
  if (kind.original) SelectObject(dc_, kind.original);
  for (const Made& m : kind.made) DeleteObject(m.object);
  kind.made.clear();
  kind.original = nullptr;
  kind.selected = nullptr;
}

void GdiCanvas::EndStage() {
  EndKind(fonts_);
  EndKind(pens_);
  EndKind(brushes_);
}

void GdiCanvas::FillRect(const Rect& r, Colour colour) {
  const RECT rc = ToRECT(r);
  HBRUSH brush = CreateSolidBrush(colour);
  if (!brush) return;
  ::FillRect(dc_, &rc, brush);
  DeleteObject(brush);
}

void GdiCanvas::FrameRect(const Rect& r, Colour colour) {
  const RECT rc = ToRECT(r);
  HBRUSH brush = CreateSolidBrush(colour);
  if (!brush) return;
  ::FrameRect(dc_, &rc, brush);
  DeleteObject(brush);
}

void GdiCanvas::Rectangle(const Rect& r) { ::Rectangle(dc_, r.left, r.top, r.right, r.bottom); }

void GdiCanvas::RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight) {
  ::RoundRect(dc_, r.left, r.top, r.right, r.bottom, ellipseWidth, ellipseHeight);
}

int32_t GdiCanvas::DrawText(const std::string& text, Rect* r, uint32_t format) {
  SetBkMode(dc_, TRANSPARENT);
  RECT rc = ToRECT(*r);
  const int height = DrawTextA(dc_, text.data(), static_cast<int>(text.size()), &rc, format);
  if (format & kDtCalcRect) *r = Rect{rc.left, rc.top, rc.right, rc.bottom};
  return height;
}

namespace {
// Pictures drawn larger than this on a side are cut to the part the device
// shows before they are stretched for the printer, and the screen keeps no
// tiles of them, so a picture blown up far beyond the page by a damaged
// record costs no more than the page. Real pages stay below it.
constexpr int32_t kWholeStretchLimit = 1 << 15;

// The source and destination rectangles of the part of a picture drawn at
// width x height that the clip box `visible` shows: whole source pixels, and
// where they land.
struct StretchPart {
  int32_t x, y, width, height;              // destination
  int32_t sourceX, sourceTop, sourceW, sourceH;  // source, rows counted from the top
};
StretchPart VisiblePart(const RECT& visible, int32_t width, int32_t height, int32_t dibW, int32_t dibH) {
  auto span = [](int64_t from, int64_t to, int64_t drawn, int64_t source, int32_t* at, int32_t* size,
                 int32_t* sourceAt, int32_t* sourceSize) {
    from = std::clamp<int64_t>(from, 0, drawn);
    to = std::clamp<int64_t>(to, 0, drawn);
    const int64_t first = from * source / drawn, last = std::min(source, (to * source + drawn - 1) / drawn);
    *sourceAt = static_cast<int32_t>(first);
    *sourceSize = static_cast<int32_t>(std::max<int64_t>(last - first, 0));
    *at = static_cast<int32_t>(first * drawn / source);
    *size = static_cast<int32_t>((last * drawn + source - 1) / source - *at);
  };
  StretchPart p;
  span(visible.left, visible.right, width, dibW, &p.x, &p.width, &p.sourceX, &p.sourceW);
  span(visible.top, visible.bottom, height, dibH, &p.y, &p.height, &p.sourceTop, &p.sourceH);
  return p;
}
}  // namespace

void GdiCanvas::DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool printing) {
  BlockLock lock(dib);
  DibInfo info;
  const void* bits = ReadDib(dib, lock, &info);
  if (!bits || width <= 0 || height <= 0) return;
  const bool whole = width <= kWholeStretchLimit && height <= kWholeStretchLimit;
  if (!printing) {
    // The screen makes only the part it shows; the window keeps what it made.
    if (pictures_ && whole && pictures_->Draw(dc_, dib, lock.bytes(), width, height)) {
      pictureKept_ = true;
      return;
    }
    return DrawShownPart(dc_, lock.bytes(), width, height);
  }
  const int dibW = info.header.biWidth, dibH = std::abs(info.header.biHeight);
  StretchPart part{0, 0, width, height, 0, 0, dibW, dibH};
  if (!whole) {
    RECT visible;
    if (GetClipBox(dc_, &visible) == ERROR) return;
    part = VisiblePart(visible, width, height, dibW, dibH);
    if (part.sourceW <= 0 || part.sourceH <= 0) return;
  }
  if (whole && (dibW > width || dibH > height) && PrintReduced(dib, width, height)) return;
  // Printers get the Dib itself and scale it up at their own resolution. A
  // bottom-up Dib counts its source rows from the bottom.
  const int sourceY = info.header.biHeight > 0 ? dibH - part.sourceTop - part.sourceH : part.sourceTop;
  StretchDIBits(dc_, part.x, part.y, part.width, part.height, part.sourceX, sourceY, part.sourceW, part.sourceH, bits,
                reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
}

// A picture with more pixels than its box has at the printer's resolution
// goes to the printer resampled down to the box: a photograph's twelve million
// pixels would fill the spool with detail no printed dot can show.
// False when memory for the smaller copy ran out.
bool GdiCanvas::PrintReduced(BlockHandle dib, int32_t width, int32_t height) {
  BlockHandle reduced;
  {
    BlockLock lock(dib);
    const auto* header = lock.as<const BitmapInfoHeader>();
    reduced = ResampleDib(dib, std::min(width, header->biWidth), std::min(height, std::abs(header->biHeight)));
  }
  bool drawn = false;
  {
    BlockLock lock(reduced);
    DibInfo info;
    if (const void* bits = ReadDib(reduced, lock, &info)) {
      StretchDIBits(dc_, 0, 0, width, height, 0, 0, info.header.biWidth, info.header.biHeight, bits,
                    reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
      drawn = true;
    }
  }
  if (reduced) GlobalBlockFree(reduced);
  return drawn;
}

void GdiCanvas::SaveState() {
  SaveDC(dc_);
  saved_.push_back({fonts_.selected, pens_.selected, brushes_.selected});
}

void GdiCanvas::RestoreState() {
  RestoreDC(dc_, -1);
  if (saved_.empty()) return;
  fonts_.selected = saved_.back().font;
  pens_.selected = saved_.back().pen;
  brushes_.selected = saved_.back().brush;
  saved_.pop_back();
}

void GdiCanvas::SetOrigin(int32_t x, int32_t y) {
  SetViewportOrgEx(dc_, baseOrigin_.x + x, baseOrigin_.y + y, nullptr);
}

void GdiCanvas::Clip(const Rect& r) {
  // SelectClipRgn takes device coordinates: the rectangle moves by the
  // viewport origin (and the window origin, when a caller set one).
  POINT corners[2] = {{r.left, r.top}, {r.right, r.bottom}};
  LPtoDP(dc_, corners, 2);
  HRGN region = CreateRectRgn(corners[0].x, corners[0].y, corners[1].x, corners[1].y);
  if (!region) return;
  SelectClipRgn(dc_, region);  // the device context keeps its own copy
  DeleteObject(region);
}

void GdiCanvas::Unclip() { SelectClipRgn(dc_, nullptr); }

Colour GdiCanvas::ButtonShadowColour() { return GetSysColor(COLOR_BTNSHADOW); }

bool GdiCanvas::VisibleBox(Rect* box) {
  RECT r;
  const int kind = GetClipBox(dc_, &r);
  if (kind == ERROR) return false;
  *box = kind == NULLREGION ? Rect{0, 0, 0, 0} : Rect{r.left, r.top, r.right, r.bottom};
  return true;
}
