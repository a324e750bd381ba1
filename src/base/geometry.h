// Rectangles, colours and DrawText format bits for code that must not
// include <windows.h>. Values and layouts are those of Win32 (RECT,
// COLORREF, DT_*), so placement codes stored in files pass straight through.
#pragma once
#include <cstdint>

struct Rect {
  int32_t left, top, right, bottom;
};

inline int32_t Width(const Rect& r) { return r.right - r.left; }
inline int32_t Height(const Rect& r) { return r.bottom - r.top; }
// Grows the rectangle by dx on the left and right and dy on the top and bottom
// (negative values shrink it), as InflateRect.
inline Rect Inflated(Rect r, int32_t dx, int32_t dy) { return {r.left - dx, r.top - dy, r.right + dx, r.bottom + dy}; }
inline Rect Deflated(const Rect& r, int32_t d) { return Inflated(r, -d, -d); }
inline Rect Offset(Rect r, int32_t dx, int32_t dy) { return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy}; }
inline bool operator==(const Rect& a, const Rect& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// A Win32 COLORREF: red in the low byte, then green and blue.
using Colour = uint32_t;
constexpr Colour RGBColour(uint32_t r, uint32_t g, uint32_t b) { return (r & 255) | (g & 255) << 8 | (b & 255) << 16; }
constexpr uint32_t RedOf(Colour c) { return c & 255; }
constexpr uint32_t GreenOf(Colour c) { return (c >> 8) & 255; }
constexpr uint32_t BlueOf(Colour c) { return (c >> 16) & 255; }

// DrawText format bits, with their Win32 values.
enum : uint32_t {
  kDtLeft = 0x0000,
  kDtTop = 0x0000,
  kDtCenter = 0x0001,
  kDtRight = 0x0002,
  kDtVCenter = 0x0004,
  kDtBottom = 0x0008,
  kDtWordBreak = 0x0010,
  kDtSingleLine = 0x0020,
  kDtExpandTabs = 0x0040,
  kDtNoClip = 0x0100,
  kDtCalcRect = 0x0400,
  kDtNoPrefix = 0x0800,
};

