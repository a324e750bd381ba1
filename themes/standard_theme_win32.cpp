#include "standard_theme_win32.h"

#include <algorithm>
#include <cmath>

namespace {

struct Look {
  int glyphGrid = 11, edge = 2, flags = 0, barHeight = 35;
};
Look g_look;

// The glyphs are designed on an 11 by 11 grid; a Grid places that design:
// its top left corner, the pixels per design unit, and the outline width.
constexpr double kDesign = 11;
struct Grid {
  HDC dc;
  int x, y;
  double unit;
  int k;  // outline width in pixels
  bool mono;
  int X(double u) const { return x + static_cast<int>(std::lround(u * unit)); }
  int Y(double v) const { return y + static_cast<int>(std::lround(v * unit)); }
  // Light colours go white and dark ones black on a monochrome look.
  COLORREF Tint(COLORREF c) const {
    if (!mono) return c;
    return GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c) < 1280 ? RGB(0, 0, 0) : RGB(255, 255, 255);
  }
};

void Fill(const Grid& g, double l, double t, double r, double b, COLORREF colour) {
  RECT rect{g.X(l), g.Y(t), g.X(r), g.Y(b)};
  HBRUSH brush = CreateSolidBrush(g.Tint(colour));
  FillRect(g.dc, &rect, brush);
  DeleteObject(brush);
}

// A rectangle with a black outline that thickens with the glyph.
void Box(const Grid& g, double l, double t, double r, double b, COLORREF colour) {
  Fill(g, l, t, r, b, RGB(0, 0, 0));
  RECT inner{g.X(l) + g.k, g.Y(t) + g.k, g.X(r) - g.k, g.Y(b) - g.k};
  HBRUSH brush = CreateSolidBrush(g.Tint(colour));
  FillRect(g.dc, &inner, brush);
  DeleteObject(brush);
}

// A filled polygon, outlined in black as thick as a box.
void Shape(const Grid& g, const double (*points)[2], int count, COLORREF colour) {
  POINT p[40];
  for (int i = 0; i < count && i < 40; ++i) p[i] = {g.X(points[i][0]), g.Y(points[i][1])};
  HPEN pen = CreatePen(PS_SOLID, g.k, RGB(0, 0, 0));
  HBRUSH brush = CreateSolidBrush(g.Tint(colour));
  HGDIOBJ oldPen = SelectObject(g.dc, pen), oldBrush = SelectObject(g.dc, brush);
  Polygon(g.dc, p, count < 40 ? count : 40);
  SelectObject(g.dc, oldPen);
  SelectObject(g.dc, oldBrush);
  DeleteObject(pen);
  DeleteObject(brush);
}

void OpenFolder(const Grid& g) {
  Box(g, 0, 1, 5, 4, RGB(200, 150, 30));   // tab
  Box(g, 0, 2, 10, 10, RGB(200, 150, 30));  // back
  const double flap[4][2] = {{2.5, 5}, {11, 5}, {8.5, 10}, {0, 10}};
  Shape(g, flap, 4, RGB(250, 210, 80));
}

void Disk(const Grid& g) {
  Box(g, 0, 0, 11, 11, RGB(40, 70, 160));
  Box(g, 3, 0, 8, 4, RGB(200, 200, 200));  // shutter
  Fill(g, 6, 1, 7, 3, RGB(40, 70, 160));
  Box(g, 2, 6, 9, 11, RGB(255, 255, 255));  // label
}

void YearGrid(const Grid& g) {
  Box(g, 0, 0, 11, 11, RGB(255, 255, 255));
  Box(g, 0, 0, 11, 3, RGB(200, 40, 40));
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column)
      Fill(g, 2 + column * 3, 4 + row * 2, 3 + column * 3, 5 + row * 2, RGB(70, 70, 70));
}

void PageGlyph(const Grid& g) {
  const double sheet[5][2] = {{1, 0.5}, {7, 0.5}, {10, 3.5}, {10, 10.5}, {1, 10.5}};
  Shape(g, sheet, 5, RGB(255, 255, 255));
  const double fold[3][2] = {{7, 0.5}, {7, 3.5}, {10, 3.5}};
  Shape(g, fold, 3, RGB(190, 190, 190));
  Fill(g, 3, 5, 8, 6, RGB(110, 110, 110));
  Fill(g, 3, 7, 8, 8, RGB(110, 110, 110));
  Fill(g, 3, 9, 6, 10, RGB(110, 110, 110));
}

void Book(const Grid& g) {
  Box(g, 2, 1, 11, 11, RGB(255, 255, 255));  // the pages behind the cover
  Box(g, 0, 0, 9, 10, RGB(30, 110, 60));
  Fill(g, 2, 2, 7, 4, RGB(240, 220, 120));  // title label
}

void Gear(const Grid& g) {
  // Eight teeth: each a pair of outer points followed by a pair of inner ones.
  double points[32][2];
  const double pi = 3.14159265358979;
  for (int i = 0; i < 32; ++i) {
    const double radius = (i % 4) < 2 ? 5.4 : 3.9;
    const double angle = (i + 0.5) * 2 * pi / 32;
    points[i][0] = 5.5 + radius * std::cos(angle);
    points[i][1] = 5.5 + radius * std::sin(angle);
  }
  Shape(g, points, 32, RGB(140, 140, 150));
  HBRUSH hole = CreateSolidBrush(g.Tint(RGB(235, 235, 235)));
  HPEN pen = CreatePen(PS_SOLID, g.k, RGB(0, 0, 0));
  HGDIOBJ oldPen = SelectObject(g.dc, pen), oldBrush = SelectObject(g.dc, hole);
  Ellipse(g.dc, g.X(3.8), g.Y(3.8), g.X(7.2), g.Y(7.2));
  SelectObject(g.dc, oldPen);
  SelectObject(g.dc, oldBrush);
  DeleteObject(pen);
  DeleteObject(hole);
}

void Door(const Grid& g) {
  Box(g, 1, 0, 10, 11, RGB(70, 45, 20));     // frame
  Box(g, 2, 1, 9, 11, RGB(180, 110, 50));    // door
  Fill(g, 3.5, 2.5, 7.5, 5, RGB(150, 90, 40));  // panels
  Fill(g, 3.5, 6.5, 7.5, 9.5, RGB(150, 90, 40));
  Fill(g, 7.5, 5.5, 8.5, 6.5, RGB(250, 210, 60));  // knob
}

// The glyph of each toolbar command.
const struct {
  int command;
  void (*draw)(const Grid&);
} kGlyphs[] = {{50, OpenFolder}, {51, Disk}, {52, YearGrid}, {53, PageGlyph},
               {54, Book},       {55, Gear}, {56, Door}};

// A hot face: the button face with a quarter of the selection colour in it.
COLORREF HotFace(COLORREF face) {
  const COLORREF h = GetSysColor(COLOR_HIGHLIGHT);
  return RGB((GetRValue(face) * 3 + GetRValue(h)) / 4, (GetGValue(face) * 3 + GetGValue(h)) / 4,
             (GetBValue(face) * 3 + GetBValue(h)) / 4);
}

void FillWith(HDC dc, const RECT& r, COLORREF colour) {
  HBRUSH brush = CreateSolidBrush(colour);
  FillRect(dc, &r, brush);
  DeleteObject(brush);
}

}  // namespace

int StandardThemeLoad(int glyphGrid, int edge, int flags, int barHeight, const char*) {
  if (glyphGrid < 4 || glyphGrid > 64 || edge < 0 || edge > 2 || barHeight < 16 || barHeight > 200) return 0;
  g_look = {glyphGrid, edge, flags, barHeight};
  return 1;
}

void StandardThemeUnload() { g_look = Look{}; }

int StandardThemeToolbarHeight() { return g_look.barHeight; }

void StandardThemeDrawToolbar(HDC dc, const RECT* area) {
  if (!dc || !area) return;
  FillWith(dc, *area, GetSysColor(COLOR_BTNFACE));
}

void StandardThemeDrawButton(HDC dc, const RECT* area, int command, int state, int liveButtons) {
  if (!dc || !area) return;
  const bool pressed = (state & THEME_PRESSED) != 0, hot = liveButtons != 0 && (state & THEME_HOT) != 0;
  const COLORREF face = GetSysColor(COLOR_BTNFACE);
  FillWith(dc, *area, hot && liveButtons == 1 && !pressed ? HotFace(face) : face);

  // With LiveButtons 2 a button lies flat until the mouse comes over it.
  RECT edge = *area;
  if (g_look.edge > 0 && (pressed || liveButtons != 2 || hot)) {
    const UINT kind = g_look.edge >= 2 ? (pressed ? EDGE_SUNKEN : EDGE_RAISED) : (pressed ? BDR_SUNKENOUTER : BDR_RAISEDINNER);
    DrawEdge(dc, &edge, kind, BF_RECT);
  }

  // The glyph: the largest multiple of the grid, in half steps, that leaves
  // a margin inside the edge; a pressed button moves it.
  const int inner = std::min(area->right - area->left, area->bottom - area->top) - 2 * g_look.edge - 4;
  const int halfSteps = std::max(2, 2 * inner / g_look.glyphGrid);
  const int size = static_cast<int>(std::lround(g_look.glyphGrid * halfSteps / 2.0)), shift = pressed ? 1 : 0;
  Grid grid{dc,
            (area->left + area->right - size) / 2 + shift,
            (area->top + area->bottom - size) / 2 + shift,
            size / kDesign,
            std::max(1, static_cast<int>(size / kDesign)),
            (g_look.flags & THEME_MONOCHROME) != 0};
  for (const auto& glyph : kGlyphs)
    if (glyph.command == command) glyph.draw(grid);
}
